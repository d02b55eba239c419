#include "Fish.h"

#include "Encode.h"

namespace media {

std::vector<File> makeFish(const Request&)
{
    Canvas canvas(64, 64);
    canvas.paint(8, [](Point p) {
        // x is the distance from the fish's axis, y runs from -1 at the head to 1 at the tail
        const float x = std::abs(p.x * 2 - 1);
        const float y = p.y * 2 - 1;
        const float body = 0.34f * std::sqrt(clamp01(1 - (y + 0.25f) * (y + 0.25f) / 0.42f));
        const Color orange = rgb(255, 128, 10);
        const Color white = rgb(255, 255, 255);
        const Color yellow = rgb(255, 220, 30);
        if (x < body) {
            const bool band = std::abs(y + 0.42f) < 0.08f || std::abs(y - 0.05f) < 0.07f;
            return band ? white : orange;
        }
        if (y > 0.35f && y < 0.9f && x < (y - 0.3f) * 0.7f && x > (y - 0.65f) * 1.2f) {
            return yellow;
        }
        if (y > -0.4f && y < 0.1f && x < 0.34f + (y + 0.4f) * 0.8f) {
            return yellow;
        }
        return withAlpha(orange, 0);
    });
    return {{"data/fish0.png", encodePng(canvas.toRgba()), "64 x 64"}};
}

} // namespace media
