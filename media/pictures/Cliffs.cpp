#include "Cliffs.h"

#include "Noise.h"

#include <iterator>

namespace media {

namespace {

/// A row of rocks whose skyline rises towards the sides of the picture.
struct Cliff {
    float foot; ///< y where it meets the sand
    float rise; ///< how high it stands at the sides
    float from; ///< how far from the middle it begins, 0 .. 0.5
    float haze;
    float soft; ///< width of its edge, in picture heights
};

constexpr Cliff CLIFFS[] = {
    {0.83f, 0.22f, 0.05f, 0.62f, 0.005f},
    {0.86f, 0.13f, 0.20f, 0.42f, 0.003f},
};

float skyline(const Cliff& cliff, float x, const Sides& sides, std::uint32_t seed)
{
    const float out = std::abs((x - sides.at(0.47f)) / sides.width());
    const float rise = smoothstep(cliff.from, 0.36f, out);
    const float crags = fractal({x * 18, 1}, 4, seed);
    const float towers = smoothstep(0.10f, 0.80f, noise(x * 5, seed + 9));
    return cliff.foot + 0.03f - cliff.rise * rise * (0.25f + 0.75f * towers) -
           0.10f * crags * (0.4f + rise);
}

} // namespace

void paintCliffs(Canvas& canvas, const Light& light, std::uint32_t seed)
{
    for (std::size_t i = 0; i < std::size(CLIFFS); ++i) {
        const Cliff& cliff = CLIFFS[i];
        const auto own = seed + 500 + static_cast<std::uint32_t>(i) * 31;
        for (int x = 0; x < canvas.width(); ++x) {
            const float u = canvas.center(x, 0).x;
            const float top = skyline(cliff, u, light.sides(), own);
            for (int y = std::max(0, static_cast<int>(canvas.pixel({u, top - cliff.soft}).y));
                 y < canvas.height(); ++y) {
                const Point p = canvas.center(x, y);
                const float v = p.y;
                const float coverage = smoothstep(-cliff.soft, cliff.soft, v - top);
                // Ledges catch the light, clefts run down between them.
                const float clefts = fractal({u * 26, v * 9}, 4, own + 3);
                const float ledges = fractal({u * 10, v * 42}, 3, own + 4);
                const float edge = bump(v, top, 0.02f);
                const float bright = clamp01(1.3f * (clefts * ledges - 0.2f) + 0.22f * edge) *
                                     (0.3f + light.sunlight(p));
                const Color rock = mix(rgb(0, 56, 96), rgb(110, 226, 206), bright);
                // Haze over the sand hides the foot.
                const float murk = mix(cliff.haze, 1.0f, 0.55f * smoothstep(top, cliff.foot, v));
                canvas.blend(x, y, withAlpha(mix(rock, light.water(p), murk), 1), coverage);
            }
        }
    }
}

} // namespace media
