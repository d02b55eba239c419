#include "Water.h"

#include "Encode.h"
#include "Noise.h"

namespace media {

std::vector<File> makeWater(const Request& request)
{
    const int size = request.waterSize;
    const auto seed = static_cast<std::uint32_t>(request.seed);
    Canvas canvas(size, size);
    canvas.paint(1, [seed](Point p) {
        const Color top = rgb(60, 220, 220);
        const Color middle = rgb(12, 120, 170);
        const Color deep = rgb(6, 56, 110);
        Color c =
            p.y < 0.4f ? mix(top, middle, p.y / 0.4f) : mix(middle, deep, (p.y - 0.4f) / 0.6f);
        const float angle = (p.x - 0.42f) / (p.y + 0.25f);
        c = c + rgb(60, 160, 150, 0) * (noise(angle * 9, seed) * smoothstep(0.8f, 0, p.y));
        c = c + rgb(60, 120, 110, 0) * (caustics(p * 14, 0, seed) * smoothstep(0.25f, 0, p.y));
        const float sand = 0.88f + 0.02f * noise(p.x * 4, seed + 1);
        if (p.y > sand) {
            c = mix(rgb(60, 120, 130), rgb(150, 150, 110), (p.y - sand) / 0.12f);
            c = lit(c, 0.8f + 0.4f * fractal({p.x * 12, p.y * 60}, 3, seed + 2));
        }
        const float edge = std::min(std::min(p.x, 1 - p.x), std::min(p.y, 1 - p.y));
        return withAlpha(mix(rgb(10, 51, 77), c, smoothstep(0, 0.05f, edge)), 1);
    });
    const std::string side = std::to_string(size);
    return {{"data/underwater.jpg", encodeJpeg(canvas.toRgb(2), 90), side + " x " + side}};
}

} // namespace media
