#include "Water.h"

#include "Cliffs.h"
#include "EncodePicture.h"
#include "Kelp.h"
#include "Light.h"
#include "Noise.h"
#include "Reef.h"
#include "Seabed.h"

namespace media {

namespace {

// Two forests stand behind the dunes and two in front of them, each larger and clearer than the
// one behind.
constexpr KelpForest FAR_KELP[] = {{9, 0.42f, 0.060f, 0.86f, 0.14f, 0.80f, 0.0034f},
                                   {6, 0.33f, 0.085f, 0.89f, 0.08f, 0.62f, 0.0020f}};
constexpr KelpForest NEAR_KELP[] = {{4, 0.22f, 0.120f, 0.94f, 0.02f, 0.34f, 0.0008f},
                                    {2, 0.09f, 0.170f, 1.02f, -0.06f, 0.08f, 0}};

/// The color at the edge of the picture. The scene halves it, which gives (5, 26, 38): the color
/// that a wide window shows beside the picture.
constexpr Color SURROUND = rgb(10, 51, 77);

/// Calls \p change with every pixel and its place in the unit square.
template<typename Change>
void forEachPixel(Canvas& canvas, Change change)
{
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            change(canvas.at(x, y), canvas.center(x, y));
        }
    }
}

/// Adds shafts of sunlight in front of all that is painted so far.
void shine(Canvas& canvas, const Light& light, float strength)
{
    forEachPixel(canvas, [&](Color& pixel, Point p) {
        pixel = screen(pixel, Light::shaftColor() * (light.shafts(p) * strength));
    });
}

/// Adds specks that drift in the water and light up where the sun reaches them. Most are tiny, a
/// few are close to the eye and out of focus.
void scatterSpecks(Canvas& canvas, const Light& light, Random random)
{
    const auto size = static_cast<float>(canvas.width());
    for (int i = 0; i < 420; ++i) {
        const bool close = i % 40 == 0;
        const Point at{random.unit(), random.unit()};
        const float large = random.unit();
        const float radius = mix(0.0007f, 0.0022f, large * large) + (close ? 0.004f : 0.0f);
        const float own = close ? 0.10f : random.between(0.15f, 0.55f);
        const float bright = own * (0.25f + light.sunlight(at) + light.shafts(at));
        const int reach = static_cast<int>(radius * size * 1.5f) + 1;
        const int cx = static_cast<int>(at.x * size);
        const int cy = static_cast<int>(at.y * size);
        for (int y = cy - reach; y <= cy + reach; ++y) {
            for (int x = cx - reach; x <= cx + reach; ++x) {
                const float disc =
                    smoothstep(1.3f, 0.5f, length(canvas.center(x, y) - at) / radius);
                canvas.blend(x, y, rgb(120, 250, 235), disc * bright);
            }
        }
    }
}

/// Brightens the picture, since the scene halves it, and darkens the corners.
void develop(Canvas& canvas)
{
    const auto lift = [](float v) { return 1 - std::pow(1 - clamp01(v), 1.35f); };
    forEachPixel(canvas, [lift](Color& pixel, Point p) {
        const float corner = length({(p.x - 0.46f) * 1.15f, (p.y - 0.38f) * 0.85f});
        const float shade = 1 - 0.38f * smoothstep(0.38f, 0.95f, corner);
        pixel = lit({lift(pixel.r), lift(pixel.g), lift(pixel.b), 1}, shade);
    });
}

/// Fades the edges of the picture into SURROUND, unevenly. The upper and lower edges fade within
/// fewer pixels: no window shows what lies beyond them.
void frame(Canvas& canvas, std::uint32_t seed)
{
    forEachPixel(canvas, [seed](Color& pixel, Point p) {
        const float uneven = fractal(p * 9, 3, seed + 70);
        const float sides = std::min(p.x, 1 - p.x) / mix(0.025f, 0.065f, uneven);
        const float ends = std::min(p.y, 1 - p.y) / mix(0.018f, 0.030f, uneven);
        pixel = mix(SURROUND, pixel, smoothstep(0.05f, 1, sides) * smoothstep(0.05f, 1, ends));
    });
}

} // namespace

std::vector<File> makeWater(const Request& request)
{
    const int size = request.waterSize;
    const auto seed = static_cast<std::uint32_t>(request.seed);
    const Light light(seed);
    Canvas canvas(size, size);
    std::uint64_t stream = 10;
    const auto plant = [&](const KelpForest& forest) {
        canvas.draw(paintKelp(forest, light, size, Random(request.seed, stream++)));
        shine(canvas, light, 0.24f);
    };
    canvas.paint(1, [&](Point p) { return screen(light.water(p), light.surface(p)); });
    paintCliffs(canvas, light, seed);
    shine(canvas, light, 0.8f);
    for (const KelpForest& forest : FAR_KELP) {
        plant(forest);
    }
    paintDunes(canvas, light, seed);
    paintStones(canvas, light, Random(request.seed, 20));
    paintReef(canvas, light, Random(request.seed, 21));
    for (const KelpForest& forest : NEAR_KELP) {
        plant(forest);
    }
    scatterSpecks(canvas, light, Random(request.seed, 30));
    develop(canvas);
    frame(canvas, seed);
    const std::string side = std::to_string(size);
    return {{"data/underwater.jpg", encodeJpeg(canvas.toRgb(2), 90), side + " x " + side}};
}

} // namespace media
