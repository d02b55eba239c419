#include "WindowCameras.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <sstream>
#include <vector>

namespace {

constexpr std::size_t MOST_CAMERAS = 16;
constexpr float FARTHEST_OFFSET = 1;

/// What a third of a window may lack when it is written with three digits.
constexpr float SLACK = 0.002F;

std::string numbers(const float* values, int count)
{
    std::ostringstream text;
    for (int i = 0; i < count; ++i) {
        text << (i > 0 ? " " : "") << values[i];
    }
    return text.str();
}

bool isPartOfWindow(const float (&rectangle)[4])
{
    const auto [x, y, w, h] = rectangle;
    return x >= -SLACK && y >= -SLACK && w > 0 && h > 0 && x + w <= 1 + SLACK && y + h <= 1 + SLACK;
}

/// \return an edge of a rectangle, rounded to a pixel of a side of so many
int edge(float fraction, int pixels)
{
    return std::clamp(static_cast<int>(std::lround(static_cast<double>(fraction) * pixels)), 0,
                      pixels);
}

PixelRect pixelsOf(const float (&rectangle)[4], int width, int height)
{
    const auto [x, y, w, h] = rectangle;
    const int left = edge(x, width);
    const int bottom = edge(y, height);
    return {left, bottom, edge(x + w, width) - left, edge(y + h, height) - bottom};
}

/// \return whether each pixel of the window is in a part
bool fill(const std::vector<PixelRect>& parts, int width, int height)
{
    // Between neighboring edges all pixels are in the same parts.
    std::set<int> xs = {0};
    std::set<int> ys = {0};
    for (const PixelRect& part : parts) {
        xs.insert({part.x, part.x + part.w});
        ys.insert({part.y, part.y + part.h});
    }
    xs.erase(width);
    ys.erase(height);
    return std::all_of(xs.begin(), xs.end(), [&](int x) {
        return std::all_of(ys.begin(), ys.end(), [&](int y) {
            return std::any_of(parts.begin(), parts.end(), [&](const PixelRect& part) {
                return x >= part.x && x < part.x + part.w && y >= part.y && y < part.y + part.h;
            });
        });
    });
}

} // namespace

WindowCameras joinCameras(const WindowEntity& window)
{
    const int width = window.location[2];
    const int height = window.location[3];
    const PixelRect whole = {0, 0, width, height};
    WindowCameras result{whole, {}, ""};
    if (window.cList.empty()) {
        return result;
    }
    if (window.cList.size() > MOST_CAMERAS) {
        result.problem = "there are more than 16 cameras";
        return result;
    }
    const float(&offset)[2] = window.cList[0]->offset;
    result.offset = {offset[0], offset[1]};
    std::vector<PixelRect> parts;
    for (const CameraEntity* camera : window.cList) {
        if (!isPartOfWindow(camera->rectangle)) {
            result.problem = "Rectangle " + numbers(camera->rectangle, 4) +
                             ": fractions of the window, x y width height, within 0 to 1";
            return result;
        }
        if (!std::equal(offset, offset + 2, camera->offset)) {
            result.problem = "cameras with an Offset of their own need a window of their own";
            return result;
        }
        parts.push_back(pixelsOf(camera->rectangle, width, height));
    }
    if (std::any_of(offset, offset + 2,
                    [](float part) { return std::fabs(part) > FARTHEST_OFFSET; })) {
        result.problem = "Offset " + numbers(offset, 2) +
                         ": fractions of the window by which its place is corrected, -1 to 1, "
                         "normally 0 0";
        return result;
    }
    if (parts.size() > 1 && !fill(parts, width, height)) {
        result.problem = "several cameras have to fill their window together";
        return result;
    }
    result.drawn = parts.size() > 1 ? whole : parts[0];
    if (result.drawn.w == 0 || result.drawn.h == 0) {
        result.problem = "Rectangle " + numbers(window.cList[0]->rectangle, 4) +
                         ": less than a pixel of the window";
    }
    return result;
}
