#include "Bubble.h"

#include "Encode.h"

namespace media {

std::vector<File> makeBubble(const Request&)
{
    Canvas canvas(64, 64);
    canvas.paint(8, [](Point p) {
        const Point q{p.x * 2 - 1, p.y * 2 - 1};
        const float r = length(q) / 0.92f;
        if (r >= 1) {
            return rgb(200, 255, 255, 0);
        }
        const float rim = std::pow(r, 6.0f);
        const float light = bump(length(q - Point{-0.35f, -0.4f}), 0, 0.15f);
        return withAlpha(rgb(210, 250, 255), clamp01(0.1f + 0.8f * rim + light));
    });
    return {{"data/bubble.png", encodePng(canvas.toRgba()), "64 x 64"}};
}

} // namespace media
