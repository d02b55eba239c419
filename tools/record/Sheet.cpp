#include "Sheet.h"

#include "Schedule.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace record {

namespace {

constexpr int GAP = 2; // pixels between two moments

} // namespace

Sheet::Sheet(Microseconds voice)
{
    for (int i = 0; i < MOMENTS; ++i) {
        const auto at = static_cast<std::size_t>(i);
        times[at] = voice * (2 * i + 1) / (2 * MOMENTS);
        shown[at] = stepShownAt(times[at]);
    }
}

bool Sheet::shows(std::int64_t step) const
{
    return std::find(shown.begin(), shown.end(), step) != shown.end();
}

Picture Sheet::empty(int width, int height)
{
    Picture sheet{MOMENTS * width + (MOMENTS - 1) * GAP, height, {}};
    sheet.pixels.resize(sheet.rowBytes() * static_cast<std::size_t>(height));
    return sheet;
}

void Sheet::place(const Picture& moment, std::int64_t step, Picture& sheet) const
{
    for (std::size_t i = 0; i < MOMENTS; ++i) {
        if (shown[i] != step) {
            continue;
        }
        const std::size_t left = i * (moment.rowBytes() + std::size_t{4} * GAP);
        for (std::size_t y = 0; y < static_cast<std::size_t>(moment.height); ++y) {
            std::memcpy(&sheet.pixels[y * sheet.rowBytes() + left],
                        &moment.pixels[y * moment.rowBytes()], moment.rowBytes());
        }
    }
}

std::string Sheet::about() const
{
    std::string text = "the scene at ";
    for (std::size_t i = 0; i < MOMENTS; ++i) {
        char seconds[32];
        std::snprintf(seconds, sizeof seconds, "%.1f", static_cast<double>(times[i]) / SECOND);
        text += i == 0 ? "" : i + 1 == MOMENTS ? " and " : ", ";
        text += seconds;
    }
    return text + " s";
}

} // namespace record
