#include "Water.h"

#include "Cliffs.h"
#include "EncodePicture.h"
#include "Kelp.h"
#include "Light.h"
#include "Noise.h"
#include "Reef.h"
#include "Seabed.h"
#include "VisibleWorld.h"

#include <utility>

namespace media {

namespace {

// Two forests stand far off in the haze, blurred, so that no fish is lost before them; two stand in
// front of the dunes, at the sides.
constexpr KelpForest FAR_KELP[] = {{6, 0.34f, 0.070f, 0.86f, -0.06f, 0.60f, 0.0040f},
                                   {5, 0.27f, 0.085f, 0.89f, 0.02f, 0.54f, 0.0028f}};
constexpr KelpForest NEAR_KELP[] = {{3, 0.21f, 0.100f, 0.93f, 0.08f, 0.50f, 0.0014f},
                                    {3, 0.17f, 0.130f, 1.02f, -0.04f, 0.08f, 0}};

/// The color at the edge of the picture. The scene halves it, which gives (5, 26, 38): the color
/// that a wide window shows beside the picture.
constexpr Color SURROUND = rgb(10, 51, 77);

/// What the edges run through on their way there.
constexpr Color DEEP = rgb(4, 84, 132);

/// How much of the picture's width runs out on each side.
constexpr float OUTER = 0.06f;

/// Where the painting lies in the square picture of the file, which is the world. Its points have y
/// from 0 at the top of what it is composed for to 1 at the bottom: of the world in the one set, of
/// WIDE_VIEW in the other.
struct Panel {
    int size;     ///< pixels of the file, in both directions
    int top;      ///< the first of its rows that is painted; the others are SURROUND
    int rows;     ///< how many are painted
    int fade;     ///< of these, how many run out into SURROUND at the top, and at the bottom
    Point corner; ///< the point at the left end of the first painted row
    float unit;   ///< pixels from the point (0, 0) to (0, 1)
    Sides sides;  ///< of what is painted clearly: the outer 6 % of the picture run out

    explicit Panel(const Request& request) : size(request.waterSize)
    {
        const auto all = static_cast<float>(size);
        if (request.wide) {
            const float first = 1 - WIDE_VIEW.top;
            fade = size / 20;
            top = static_cast<int>(first * all) - fade;
            rows = size - 2 * top;
            unit = (WIDE_VIEW.top - WIDE_VIEW.bottom) * all;
            corner = {0.5f - 0.5f * all / unit, (static_cast<float>(top) - first * all) / unit};
        } else {
            fade = static_cast<int>(SQUARE_VIEW.bottom * all);
            top = 0;
            rows = size;
            unit = all;
            corner = {0, 0};
        }
        sides = {corner.x + OUTER * all / unit, corner.x + (1 - OUTER) * all / unit};
    }
};

/// Calls \p change with every pixel, its place in the picture, and its number.
template<typename Change>
void forEachPixel(Canvas& canvas, Change change)
{
    std::size_t number = 0;
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            change(canvas.at(x, y), canvas.center(x, y), number++);
        }
    }
}

/// The shafts of sunlight, worked out once for each pixel.
class Shafts {
public:
    Shafts(Canvas& canvas, const Light& light)
    {
        strengths.reserve(static_cast<std::size_t>(canvas.width()) *
                          static_cast<std::size_t>(canvas.height()));
        forEachPixel(canvas,
                     [&](Color&, Point p, std::size_t) { strengths.push_back(light.shafts(p)); });
    }

    /// Adds a share of their light in front of all that is painted so far.
    void shine(Canvas& canvas, float share) const
    {
        forEachPixel(canvas, [&](Color& pixel, Point p, std::size_t number) {
            pixel = screen(pixel, Light::shaftColor(p) * (strengths[number] * share));
        });
    }

private:
    std::vector<float> strengths;
};

/// Adds specks that drift in the water and light up where the sun reaches them. Most are tiny, a
/// few are close to the eye and out of focus.
void scatterSpecks(Canvas& canvas, const Light& light, Random random)
{
    const float size = canvas.unit();
    const Sides sides = light.sides();
    const int count = static_cast<int>(420 * sides.width());
    for (int i = 0; i < count; ++i) {
        const bool close = i % 40 == 0;
        const float share = random.unit();
        const Point at{sides.at(share), random.unit()};
        const float large = random.unit();
        const float radius = mix(0.0007f, 0.0022f, large * large) + (close ? 0.004f : 0.0f);
        const float own = close ? 0.10f : random.between(0.15f, 0.55f);
        const float bright = own * (0.25f + light.sunlight(at) + light.shafts(at));
        const int reach = static_cast<int>(radius * size * 1.5f) + 1;
        const Point middle = canvas.pixel(at);
        const int cx = static_cast<int>(middle.x);
        const int cy = static_cast<int>(middle.y);
        for (int y = cy - reach; y <= cy + reach; ++y) {
            for (int x = cx - reach; x <= cx + reach; ++x) {
                const float disc =
                    smoothstep(1.3f, 0.5f, length(canvas.center(x, y) - at) / radius);
                canvas.blend(x, y, rgb(150, 255, 240), disc * bright);
            }
        }
    }
}

/// Brightens the picture, since the scene halves it, and darkens the corners a little.
void develop(Canvas& canvas, const Sides& sides)
{
    const auto lift = [](float v) { return 1 - std::pow(1 - clamp01(v), 1.55f); };
    forEachPixel(canvas, [&](Color& pixel, Point p, std::size_t) {
        const float aside = (p.x - sides.at(0.46f)) / sides.width();
        const float corner = length({aside * 1.1f, (p.y - 0.38f) * 0.85f});
        const float shade = 1 - 0.09f * smoothstep(0.40f, 0.95f, corner);
        pixel = lit({lift(pixel.r), lift(pixel.g), lift(pixel.b), 1}, shade);
    });
}

/// Fades the edges of the painting into SURROUND, unevenly, as sight ends in water.
void frame(Canvas& canvas, const Panel& panel, std::uint32_t seed)
{
    for (int y = 0; y < canvas.height(); ++y) {
        for (int x = 0; x < canvas.width(); ++x) {
            const float column = static_cast<float>(std::min(x, canvas.width() - 1 - x)) /
                                 static_cast<float>(panel.size);
            const float row = static_cast<float>(std::min(y, canvas.height() - 1 - y)) /
                              static_cast<float>(panel.fade);
            const Point p = canvas.center(x, y);
            const float uneven = clamp01(2.4f * fractal(p * 6, 4, seed + 70) - 0.7f);
            const float shown = smoothstep(0.012f * uneven, mix(0.036f, OUTER, uneven), column) *
                                smoothstep(0.06f, mix(0.6f, 1.0f, uneven), row);
            // The haze begins further in. Then through the blue of the deep, so that the end looks
            // like far water, not like a frame.
            const Color far = mix(SURROUND, DEEP, smoothstep(0, 0.8f, shown));
            const float haze = 0.36f * smoothstep(0.18f, 0.03f, column);
            canvas.at(x, y) = mix(far, mix(canvas.at(x, y), DEEP, haze), shown);
        }
    }
}

/// Paints what the window shows and a little around it.
Canvas paintPanel(const Request& request, const Panel& panel)
{
    const auto seed = static_cast<std::uint32_t>(request.seed);
    const Light light(seed, panel.sides);
    Canvas canvas(panel.size, panel.rows, panel.corner, panel.unit);
    forEachPixel(canvas, [&](Color& pixel, Point p, std::size_t) {
        pixel = screen(light.water(p), light.surface(p));
    });
    const Shafts shafts(canvas, light);
    std::uint64_t stream = 10;
    const auto plant = [&](const KelpForest& forest) {
        Canvas layer = canvas.another();
        paintKelp(layer, forest, light, Random(request.seed, stream++));
        canvas.draw(layer);
        shafts.shine(canvas, 0.20f);
    };
    paintCliffs(canvas, light, seed);
    shafts.shine(canvas, 1.0f);
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
    develop(canvas, panel.sides);
    frame(canvas, panel, seed);
    return canvas;
}

} // namespace

std::vector<File> makeWater(const Request& request)
{
    const Panel panel(request);
    Canvas picture = paintPanel(request, panel);
    if (panel.rows < panel.size) {
        Canvas whole(panel.size, panel.size);
        forEachPixel(whole, [](Color& pixel, Point, std::size_t) { pixel = SURROUND; });
        whole.copyRows(picture, panel.top);
        picture = std::move(whole);
    }
    const std::string side = std::to_string(panel.size);
    return {{"data/underwater.jpg", encodeJpeg(picture.toRgb(2), 90), side + " x " + side}};
}

} // namespace media
