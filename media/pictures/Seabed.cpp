#include "Seabed.h"

#include "Noise.h"

#include <iterator>

namespace media {

namespace {

/// One dune behind the other.
struct Dune {
    float crest; ///< mean y of its ridge
    float swing; ///< how far the ridge rises and falls
    float wide;  ///< how many hills across the picture
    float eye;   ///< y of the horizon that its ripples run to
    float haze;  ///< 0 = near, 1 = has the color of the water
};

constexpr Dune DUNES[] = {
    {0.785f, 0.050f, 3.1f, 0.755f, 0.72f},
    {0.825f, 0.045f, 2.3f, 0.780f, 0.46f},
    {0.865f, 0.040f, 1.7f, 0.800f, 0.24f},
    {0.920f, 0.045f, 1.3f, 0.825f, 0.05f},
};

constexpr Color SAND_LIT = rgb(92, 244, 208);
constexpr Color SAND_DARK = rgb(0, 134, 160);

float ridge(const Dune& dune, float x, std::uint32_t seed)
{
    return dune.crest + dune.swing * (fractal({x * dune.wide, 0.5f}, 2, seed) - 0.5f) * 1.6f;
}

Color sand(const Dune& dune, Point p, float crest, const Light& light, std::uint32_t seed)
{
    // Perspective: x and depth on the ground both shrink toward the horizon.
    const float away = 0.1f / std::max(p.y - dune.eye, 0.01f);
    const Point ground{(p.x - 0.5f) * away * 3.0f + 9.0f, away * 4.0f};
    const float warp = fractal(ground * 1.3f, 3, seed + 60);
    const float slope = fractal(ground * 0.9f + Point{4, 2}, 3, seed + 61) -
                        fractal(ground * 0.9f + Point{4.12f, 2.05f}, 3, seed + 61);
    const float phase = ground.y * 9.0f + ground.x * 1.4f + warp * 7.0f;
    const float fade = smoothstep(2.6f, 0.9f, away);
    // Ripples are steep on the lee side.
    const float ripple = (std::sin(phase) + 0.35f * std::sin(2 * phase + 0.8f)) * fade;
    const float net = caustics(ground * 1.5f, 0.3f, seed + 62) * smoothstep(3.5f, 1.0f, away);
    const float grain = noise(p * 700, seed + 63) - 0.5f;
    const float under = smoothstep(0, 0.05f, p.y - crest);
    float bright = 0.68f + 1.6f * slope + 0.09f * ripple + 0.06f * grain - 0.12f * under;
    bright += 0.10f * bump(p.y, crest, 0.006f);
    bright *= 0.80f + 0.50f * light.belowSun(p);
    Color c = mix(SAND_DARK, SAND_LIT, clamp01(bright));
    c = screen(c, Color{0.24f, 0.86f, 0.62f, 0} * (net * (0.55f + light.belowSun(p))));
    return mix(c, light.water(p), dune.haze);
}

/// A boulder: an ellipse with a lumpy outline, shaded as a dome that is lit from above.
void paintStone(Canvas& canvas, const Light& light, Point center, Point radius, float haze,
                std::uint32_t seed)
{
    const float size = canvas.unit();
    const Point from = canvas.pixel({center.x - radius.x * 1.7f, center.y - radius.y * 1.4f});
    const Point to = canvas.pixel({center.x + radius.x * 1.7f, center.y + radius.y * 1.7f});
    const float tint = noise(3.7f, seed);
    const Color shade = mix(rgb(4, 60, 90), rgb(14, 70, 84), tint);
    const Color body = mix(rgb(60, 140, 150), rgb(130, 140, 110), tint);
    const Color lichen = mix(rgb(150, 90, 140), rgb(120, 170, 90), noise(9.1f, seed));
    for (int y = static_cast<int>(std::floor(from.y)); y <= static_cast<int>(to.y); ++y) {
        for (int x = static_cast<int>(std::floor(from.x)); x <= static_cast<int>(to.x); ++x) {
            const Point p = canvas.center(x, y);
            const Point q{(p.x - center.x) / radius.x, (p.y - center.y) / radius.y};
            // The shadow on the sand first, then the stone over it.
            const Point s{q.x * 0.85f, (q.y - 0.55f) * 1.7f};
            const float shadow = smoothstep(1.25f, 0.35f, length(s));
            canvas.blend(x, y, withAlpha(mix(rgb(6, 40, 58), light.water(p), haze), 1),
                         0.6f * shadow);

            const Point way = q * (1 / std::max(length(q), 1e-4f));
            const float lumps = 0.78f + 0.40f * fractal(way * 1.3f + Point{5, 5}, 2, seed);
            const float flat = q.y > 0.35f ? 1 + (q.y - 0.35f) * 0.9f : 1;
            const float r = length(q) * flat / lumps;
            const float coverage =
                clamp01(0.5f + (1 - r) * std::min(radius.x, radius.y) * size * 0.7f);
            if (coverage <= 0) {
                continue;
            }
            const float dome = std::sqrt(clamp01(1 - r * r));
            const float rough = fractal(p * 95, 3, seed + 3) - 0.5f;
            const float facing =
                0.30f + 0.55f * dome * 0.6f - 0.55f * q.y - 0.18f * q.x + 0.7f * rough;
            Color c = mix(shade, body, clamp01(facing));
            const float growth = smoothstep(0.52f, 0.66f, fractal(p * 36, 3, seed + 4)) *
                                 smoothstep(0.3f, -0.5f, q.y);
            c = mix(c, lit(lichen, 0.55f + 0.6f * clamp01(facing)), 0.55f * growth);
            const float net = caustics(Point{p.x * 26, p.y * 34 + q.x * q.x}, 0.7f, seed + 5);
            c = screen(c,
                       Color{0.20f, 0.42f, 0.36f, 0} * (net * clamp01(0.2f - q.y) * dome * 1.2f));
            c = mix(c, light.water(p), haze);
            canvas.blend(x, y, withAlpha(c, 1), coverage);
        }
    }
}

} // namespace

void paintDunes(Canvas& canvas, const Light& light, std::uint32_t seed)
{
    const float size = canvas.unit();
    for (std::size_t i = 0; i < std::size(DUNES); ++i) {
        const Dune& dune = DUNES[i];
        const auto own = seed + static_cast<std::uint32_t>(i) * 100;
        // Far ridges are soft.
        const float soft = 1 + 5 * dune.haze;
        for (int x = 0; x < canvas.width(); ++x) {
            const float u = canvas.center(x, 0).x;
            const float crest = ridge(dune, u, own);
            for (int y = static_cast<int>(canvas.pixel({u, dune.crest - dune.swing}).y) - 8;
                 y < canvas.height(); ++y) {
                const Point p = canvas.center(x, y);
                const float coverage = clamp01((p.y - crest) * size / soft);
                if (coverage > 0) {
                    canvas.blend(x, y, withAlpha(sand(dune, p, crest, light, own), 1), coverage);
                }
            }
        }
    }
}

void paintStones(Canvas& canvas, const Light& light, Random random)
{
    struct Heap {
        float x;
        float y;
        float wide;
        float largest;
        int stones;
        float haze;
    };
    static constexpr Heap HEAPS[] = {
        {0.66f, 0.868f, 0.10f, 0.020f, 6, 0.55f}, {0.27f, 0.885f, 0.10f, 0.022f, 6, 0.45f},
        {0.88f, 0.925f, 0.14f, 0.050f, 7, 0.22f}, {0.10f, 0.940f, 0.14f, 0.060f, 8, 0.14f},
        {0.60f, 0.965f, 0.10f, 0.022f, 5, 0.06f}, {0.93f, 0.985f, 0.12f, 0.055f, 5, 0.02f},
    };
    std::uint32_t seed = 1;
    for (const Heap& heap : HEAPS) {
        for (int i = 0; i < heap.stones; ++i) {
            const float t = static_cast<float>(i) / static_cast<float>(heap.stones);
            const float large = heap.largest * mix(1.0f, 0.35f, t) * random.between(0.8f, 1.1f);
            const float aside = heap.wide * (random.unit() - 0.5f) * (0.5f + t);
            const float before = heap.wide * 0.22f * t * random.unit();
            const Point center{light.sides().at(heap.x) + aside,
                               heap.y + before + (heap.largest - large) * 0.5f};
            paintStone(canvas, light, center, {large, large * random.between(0.6f, 0.85f)},
                       heap.haze, seed += 17);
        }
    }
}

} // namespace media
