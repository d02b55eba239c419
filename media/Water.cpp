#include "Water.h"

#include "Encode.h"
#include "Kelp.h"
#include "Light.h"
#include "Noise.h"
#include "Reef.h"
#include "Seabed.h"

namespace media {

namespace {

/// Lays light over the canvas; \p light gives the colour to add at a point.
template<typename Source>
void shine(Canvas& canvas, Source light)
{
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            const Point p{(static_cast<float>(x) + 0.5f) / static_cast<float>(canvas.width()),
                          (static_cast<float>(y) + 0.5f) / static_cast<float>(canvas.height())};
            canvas.at(x, y) = screen(canvas.at(x, y), light(p));
        }
    }
}

/// What drifts in every sea: specks that light up where the sun reaches them, most of them tiny,
/// a few close to the eye and out of focus.
void scatterSpecks(Canvas& canvas, const Light& light, Random random)
{
    const auto size = static_cast<float>(canvas.width());
    for (int i = 0; i < 420; ++i) {
        const Point at{random.unit(), random.unit()};
        const float near = random.unit();
        const float radius = mix(0.0007f, 0.0022f, near * near) + (i % 40 == 0 ? 0.004f : 0.0f);
        const float bright = (i % 40 == 0 ? 0.10f : random.between(0.15f, 0.55f)) *
                             (0.25f + light.sunlight(at) + light.shafts(at));
        const int reach = static_cast<int>(radius * size * 1.5f) + 1;
        const int cx = static_cast<int>(at.x * size);
        const int cy = static_cast<int>(at.y * size);
        for (int y = cy - reach; y <= cy + reach; ++y) {
            for (int x = cx - reach; x <= cx + reach; ++x) {
                const Point p{(static_cast<float>(x) + 0.5f) / size,
                              (static_cast<float>(y) + 0.5f) / size};
                const float disc = smoothstep(1.3f, 0.5f, length(p - at) / radius);
                canvas.blend(x, y, rgb(120, 250, 235), disc * bright);
            }
        }
    }
}

/// Darkens the corners, and lets the rim of the picture run out into the colour that surrounds it
/// in a wide window, with the uneven edge of a wash.
void frame(Canvas& canvas, std::uint32_t seed)
{
    constexpr Color SURROUND = rgb(10, 51, 77);
    const auto size = static_cast<float>(canvas.width());
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            const Point p{(static_cast<float>(x) + 0.5f) / size,
                          (static_cast<float>(y) + 0.5f) / size};
            const float corner = length({(p.x - 0.46f) * 1.15f, (p.y - 0.38f) * 0.85f});
            Color c = canvas.at(x, y);
            const auto lift = [](float v) { return 1 - std::pow(1 - clamp01(v), 1.35f); };
            c = {lift(c.r), lift(c.g), lift(c.b), 1};
            c = lit(c, 1 - 0.38f * smoothstep(0.38f, 0.95f, corner));
            const float uneven = fractal(p * 9, 3, seed + 70);
            const float side = std::min(p.x, 1 - p.x) / mix(0.025f, 0.065f, uneven);
            const float ends = std::min(p.y, 1 - p.y) / mix(0.018f, 0.030f, uneven);
            c = mix(SURROUND, c, smoothstep(0.05f, 1, side) * smoothstep(0.05f, 1, ends));
            canvas.at(x, y) = c;
        }
    }
}

} // namespace

std::vector<File> makeWater(const Request& request)
{
    const int size = request.waterSize;
    const auto seed = static_cast<std::uint32_t>(request.seed);
    const Light light(seed);
    Canvas canvas(size, size);
    canvas.paint(1,
                 [&](Point p) { return withAlpha(screen(light.water(p), light.surface(p)), 1); });

    static constexpr KelpForest FORESTS[] = {
        {9, 0.42f, 0.060f, 0.86f, 0.14f, 0.80f, 0.0034f},
        {6, 0.33f, 0.085f, 0.89f, 0.08f, 0.62f, 0.0020f},
        {4, 0.22f, 0.120f, 0.94f, 0.02f, 0.34f, 0.0008f},
        {2, 0.09f, 0.170f, 1.02f, -0.06f, 0.08f, 0},
    };
    const auto beams = [&](float strength) {
        shine(canvas, [&](Point p) { return Light::shaftColour() * (light.shafts(p) * strength); });
    };
    paintCliffs(canvas, light, seed);
    beams(0.8f);
    std::uint64_t stream = 10;
    for (const KelpForest& forest : FORESTS) {
        if (&forest == &FORESTS[2]) {
            paintDunes(canvas, light, seed);
            paintStones(canvas, light, Random(request.seed, 20));
            paintReef(canvas, light, Random(request.seed, 21));
        }
        canvas.draw(paintKelp(forest, light, size, Random(request.seed, stream++)));
        beams(0.24f);
    }
    scatterSpecks(canvas, light, Random(request.seed, 30));
    frame(canvas, seed);
    const std::string side = std::to_string(size);
    return {{"data/underwater.jpg", encodeJpeg(canvas.toRgb(2), 90), side + " x " + side}};
}

} // namespace media
