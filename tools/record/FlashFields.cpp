#include "FlashFields.h"

#include <algorithm>

namespace record {

FlashFields::FlashFields(int columnCount, int rowCount, int fps)
    : columns(columnCount), rows(rowCount), width(std::max(rows * 341 / 768, 1)),
      height(std::max(rows * 256 / 768, 1)), second(fps), atOnce(std::max(fps / 12, 1)),
      cells(static_cast<double>(width) * height)
{
    // A field may be wider than a narrow picture: beside that there is nothing.
    width = std::min(width, columns);
    const std::size_t fields =
        static_cast<std::size_t>(columns - width + 1) * static_cast<std::size_t>(rows - height + 1);
    std::array<int, COUNTED> never{};
    never.fill(-std::max(second, atOnce));
    for (Direction& direction : directions) {
        direction.latest.assign(static_cast<std::size_t>(atOnce), Sums(fields));
        direction.frames.assign(fields, never);
    }
    directions[0].change = FLASH_UP;
    directions[1].change = FLASH_DOWN;
    integral.resize(static_cast<std::size_t>(columns + 1) * static_cast<std::size_t>(rows + 1));
}

void FlashFields::add(const std::vector<std::uint8_t>& changes)
{
    for (Direction& direction : directions) {
        addUp(changes, direction.change, direction.latest[static_cast<std::size_t>(now % atOnce)]);
    }
    const std::size_t fields = directions[0].frames.size();
    for (std::size_t field = 0; field < fields; ++field) {
        const bool up = changesNow(directions[0], directions[1], field);
        const bool down = changesNow(directions[1], directions[0], field);
        if (up || down) {
            flashes = std::max(flashes, std::min(inThisSecond(directions[0], field),
                                                 inThisSecond(directions[1], field)));
        }
    }
    ++now;
}

/// Counts the cells with a change in each field.
void FlashFields::addUp(const std::vector<std::uint8_t>& changes, std::uint8_t change, Sums& sums)
{
    const auto row = [this](int y) {
        return &integral[static_cast<std::size_t>(y) * static_cast<std::size_t>(columns + 1)];
    };
    std::size_t cell = 0;
    for (int y = 0; y < rows; ++y) {
        int sum = 0;
        for (int x = 0; x < columns; ++x, ++cell) {
            sum += (changes[cell] & change) != 0 ? 1 : 0;
            row(y + 1)[x + 1] = row(y)[x + 1] + sum;
        }
    }
    std::size_t field = 0;
    for (int y = 0; y + height <= rows; ++y) {
        const int* const top = row(y);
        const int* const bottom = row(y + height);
        for (int x = 0; x + width <= columns; ++x, ++field) {
            sums[field] = bottom[x + width] - bottom[x] - top[x + width] + top[x];
        }
    }
}

/// Whether a field changes in a direction: by its cells of this frame, or of several frames since
/// the change before, less those that change the other way.
bool FlashFields::changesNow(Direction& direction, const Direction& opposite, std::size_t field)
{
    std::array<int, COUNTED>& frames = direction.frames[field];
    int sum = 0;
    for (int frame = std::max({now - atOnce, frames.back(), -1}) + 1; frame <= now; ++frame) {
        const auto at = static_cast<std::size_t>(frame % atOnce);
        sum += direction.latest[at][field] - opposite.latest[at][field];
    }
    const int here = direction.latest[static_cast<std::size_t>(now % atOnce)][field];
    const double part = std::max(sum, here) / cells;
    share = std::max(share, part);
    if (part <= AREA) {
        return false;
    }
    std::rotate(frames.begin(), frames.begin() + 1, frames.end());
    frames.back() = now;
    return true;
}

int FlashFields::inThisSecond(const Direction& direction, std::size_t field) const
{
    const std::array<int, COUNTED>& frames = direction.frames[field];
    return static_cast<int>(std::count_if(frames.begin(), frames.end(),
                                          [this](int frame) { return frame > now - second; }));
}

} // namespace record
