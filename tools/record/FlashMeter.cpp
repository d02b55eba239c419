#include "FlashMeter.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace record {

namespace {

constexpr int ROWS = 192; // fewest cells that a large picture is averaged to

// The thresholds of WCAG 2.2.
constexpr float LEAST_CHANGE = 0.1F;
constexpr float BRIGHT = 0.8F;
constexpr float RED_SHARE = 0.8F;
constexpr float LEAST_DIFFERENCE = 0.2F;

/// The linear value of each sRGB byte, by the definition of relative luminance.
std::array<float, 256> linearValues()
{
    std::array<float, 256> values{};
    for (std::size_t byte = 0; byte < values.size(); ++byte) {
        const double s = static_cast<double>(byte) / 255;
        values[byte] =
            static_cast<float>(s <= 0.04045 ? s / 12.92 : std::pow((s + 0.055) / 1.055, 2.4));
    }
    return values;
}

} // namespace

FlashMeter::Changes::Changes(std::size_t cells, int delay, FlashFields where)
    : latest(static_cast<std::size_t>(delay + 1), std::vector<std::uint8_t>(cells)),
      fields(std::move(where))
{
}

std::uint8_t& FlashMeter::Changes::at(int frame, std::size_t cell)
{
    return latest[static_cast<std::size_t>(frame) % latest.size()][cell];
}

/// Counts the changes of a frame, and makes room for those of another.
void FlashMeter::Changes::count(int frame)
{
    std::vector<std::uint8_t>& changes = latest[static_cast<std::size_t>(frame) % latest.size()];
    fields.add(changes);
    std::fill(changes.begin(), changes.end(), std::uint8_t{0});
}

// At more than three flashes a second a change takes less than a sixth of it.
FlashMeter::FlashMeter(int width, int height, int fps)
    : side(std::max(height / ROWS, 1)), columns(std::max(width / side, 1)), rows(height / side),
      delay(fps / 6), cells(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)),
      brightness(cells.size()), hues(cells.size()),
      general(cells.size(), delay, {columns, rows, fps}), red(general)
{
}

void FlashMeter::add(const Picture& frame)
{
    average(frame);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const Color& color = cells[i];
        const float luminance = 0.2126F * color.red + 0.7152F * color.green + 0.0722F * color.blue;
        const Chromaticity chromaticity = chromaticityOf(color);
        if (now == 0) {
            start(i, luminance, chromaticity);
        } else {
            watch(i, luminance);
            watch(i, chromaticity);
        }
    }
    if (now >= delay) {
        general.count(now - delay);
        red.count(now - delay);
    }
    ++now;
}

FlashMeter::Result FlashMeter::finish()
{
    for (int frame = std::max(now - delay, 0); frame < now; ++frame) {
        general.count(frame);
        red.count(frame);
    }
    return {{general.fields.most(), general.fields.largest()},
            {red.fields.most(), red.fields.largest()}};
}

void FlashMeter::average(const Picture& frame)
{
    static const std::array<float, 256> LINEAR = linearValues();
    std::fill(cells.begin(), cells.end(), Color{});
    // A picture narrower than a square has one column.
    const int across = std::min(side, frame.width);
    const float weight = 1 / static_cast<float>(side * across);
    for (int y = 0; y < rows * side; ++y) {
        const std::uint8_t* pixel = &frame.pixels[frame.rowBytes() * static_cast<std::size_t>(y)];
        Color* const row =
            &cells[static_cast<std::size_t>(y / side) * static_cast<std::size_t>(columns)];
        for (int x = 0; x < columns; ++x) {
            for (int i = 0; i < across; ++i, pixel += 4) {
                row[x].red += weight * LINEAR[pixel[0]];
                row[x].green += weight * LINEAR[pixel[1]];
                row[x].blue += weight * LINEAR[pixel[2]];
            }
        }
    }
}

void FlashMeter::start(std::size_t cell, float luminance, const Chromaticity& color)
{
    brightness[cell].latest = brightness[cell].low = brightness[cell].high = luminance;
    hues[cell].after = color;
}

void FlashMeter::watch(std::size_t cell, float luminance)
{
    Brightness& state = brightness[cell];
    const float step = luminance - state.latest;
    state.latest = luminance;
    if (state.direction <= 0 && luminance <= state.low) {
        state.low = luminance;
        state.rise = {};
    }
    if (state.direction >= 0 && luminance >= state.high) {
        state.high = luminance;
        state.fall = {};
    }
    steepen(cell, FLASH_UP, state.rise, step, state.direction > 0);
    steepen(cell, FLASH_DOWN, state.fall, -step, state.direction < 0);
    if (state.direction <= 0 && luminance - state.low >= LEAST_CHANGE && state.low < BRIGHT) {
        state.direction = 1;
        state.high = luminance;
        state.fall = {};
        general.at(std::max(state.rise.frame, now - delay), cell) |= FLASH_UP;
    } else if (state.direction >= 0 && state.high - luminance >= LEAST_CHANGE &&
               luminance < BRIGHT) {
        state.direction = -1;
        state.low = luminance;
        state.rise = {};
        general.at(std::max(state.fall.frame, now - delay), cell) |= FLASH_DOWN;
    }
}

/// Notes a step that is the steepest of its change so far.
/// \param counts  whether the change is one already: it then moves to this frame, if it can
void FlashMeter::steepen(std::size_t cell, FlashChange change, Slope& slope, float height,
                         bool counts)
{
    if (height <= slope.height) {
        return;
    }
    if (counts && slope.frame >= now - delay) {
        general.at(slope.frame, cell) &= static_cast<std::uint8_t>(~change);
        general.at(now, cell) |= change;
    }
    slope = {height, now};
}

FlashMeter::Chromaticity FlashMeter::chromaticityOf(const Color& color)
{
    const float sum = color.red + color.green + color.blue;
    if (sum <= 0) {
        return {0.1978F, 0.4683F, false}; // black has none: that of white
    }
    // sRGB to CIE XYZ (IEC 61966-2-1), and XYZ to u', v' (CIE 1976).
    const float x = 0.4124F * color.red + 0.3576F * color.green + 0.1805F * color.blue;
    const float y = 0.2126F * color.red + 0.7152F * color.green + 0.0722F * color.blue;
    const float z = 0.0193F * color.red + 0.1192F * color.green + 0.9505F * color.blue;
    const float d = x + 15 * y + 3 * z;
    return {4 * x / d, 9 * y / d, color.red / sum >= RED_SHARE};
}

void FlashMeter::watch(std::size_t cell, const Chromaticity& color)
{
    const auto distance = [](const Chromaticity& a, const Chromaticity& b) {
        return std::hypot(a.u - b.u, a.v - b.v);
    };
    Hue& hue = hues[cell];
    if ((color.saturatedRed || hue.after.saturatedRed) &&
        distance(color, hue.after) > LEAST_DIFFERENCE) {
        hue = {hue.after, color, true};
        red.at(now, cell) |= color.saturatedRed ? FLASH_UP : FLASH_DOWN;
    } else if (hue.changed && distance(color, hue.before) > distance(hue.after, hue.before)) {
        // The transition goes on as long as the color moves away from the one before.
        hue.after = color;
    }
}

std::string FlashMeter::Result::text() const
{
    std::string text = "flashes          in a second   at once, of a field of 10 degrees\n";
    for (const auto& [name, count] : {std::pair{"general", general}, std::pair{"red", red}}) {
        char line[80];
        std::snprintf(line, sizeof line, "%-16s %d%-13s%.1f %%\n", name, count.most,
                      count.most > MOST ? " or more" : "", 100 * count.largest);
        text += line;
    }
    return text + (isMet() ? "WCAG 2.3.1 is met" : "WCAG 2.3.1 is not met") +
           ": at most three in a second, or at most 25 % of a field";
}

} // namespace record
