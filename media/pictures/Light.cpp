#include "Light.h"

#include "Noise.h"

#include <iterator>

namespace media {

namespace {

/// Down to where the waves of the surface can be seen.
constexpr float WAVES = 0.20f;

} // namespace

Light::Light(std::uint32_t chosen, Sides between)
    : seed(chosen), ends(between), sun{between.at(0.41f), -0.30f}
{
}

Color Light::water(Point p) const
{
    struct Stop {
        float y;
        Color color;
    };
    static constexpr Stop STOPS[] = {
        {0.00f, rgb(26, 168, 182)}, {0.10f, rgb(12, 162, 192)}, {0.25f, rgb(4, 146, 198)},
        {0.45f, rgb(0, 117, 188)},  {0.66f, rgb(0, 82, 166)},   {0.80f, rgb(0, 90, 162)},
        {1.00f, rgb(4, 96, 146)},
    };
    // Noise of low frequency keeps the gradient from showing as straight bands.
    const float drift = 0.10f * (fractal({p.x * 2.2f, p.y * 3.0f}, 3, seed + 40) - 0.5f);
    const float y = clamp01(p.y + drift * smoothstep(0, 0.3f, p.y));
    Color c = STOPS[0].color;
    for (std::size_t i = 1; i < std::size(STOPS); ++i) {
        c = mix(c, STOPS[i].color, smoothstep(STOPS[i - 1].y, STOPS[i].y, y));
    }
    // The glow around the sun, and the dimmer water to both sides of it.
    const Point from{(p.x - sun.x) / ends.width(), p.y - sun.y};
    const float away = length({from.x * 1.25f, from.y * 0.8f});
    const float glow = std::exp(-away * away * 4.5f);
    const float side = std::abs(from.x);
    c = lit(c, 1.0f - 0.22f * smoothstep(0.1f, 0.7f, side));
    return screen(c, Color{0.04f, 0.40f, 0.32f, 0} * glow);
}

float Light::shafts(Point p) const
{
    const Point ray = p - sun;
    const float angle = std::atan2(ray.x, ray.y);
    const float far = length(ray);
    // The deeper, the broader the rays.
    const float deep = smoothstep(0.1f, 0.9f, p.y);
    const float fine = noise({angle * 46, far * 0.7f}, seed + 1);
    const float middle = noise({angle * 19 + 3, far * 0.5f}, seed + 2);
    const float broad = noise({angle * 8 + 9, far * 0.4f}, seed + 3);
    const float sum =
        broad * 0.38f + middle * mix(0.36f, 0.50f, deep) + fine * mix(0.26f, 0.12f, deep);
    const float rays = smoothstep(mix(0.41f, 0.38f, deep), mix(0.66f, 0.72f, deep), sum);
    const float fan = bump(angle, 0.04f, 1.2f);
    const float fade = smoothstep(1.10f, 0.05f, p.y);
    return rays * fan * fade;
}

Color Light::shaftColor(Point p)
{
    constexpr Color HIGH{0.12f, 1.00f, 0.90f, 0};
    constexpr Color DEEP{0.00f, 0.82f, 0.76f, 0};
    return mix(HIGH, DEEP, smoothstep(0, 0.45f, p.y));
}

float Light::sunlight(Point p) const
{
    const float side = std::abs(p.x - sun.x) / ends.width();
    return clamp01(std::exp(-std::max(p.y, 0.0f) * 1.1f) * (1.2f - 0.4f * side));
}

float Light::belowSun(Point p) const
{
    return bump(p.x, sun.x + 0.02f, 0.40f * ends.width());
}

Color Light::surface(Point p) const
{
    if (p.y >= WAVES) {
        return {};
    }
    // Perspective: the waves lie on a plane above, and crowd together toward the horizon.
    const float height = WAVES - p.y;
    const float away = 0.10f / std::max(height, 0.012f);
    const Point onSea{(p.x - sun.x) * away * 5.0f, away * 3.2f};
    const Point bend{fractal(onSea * 0.8f, 3, seed + 5) - 0.5f,
                     fractal(onSea * 0.9f, 3, seed + 6) - 0.5f};
    const float swell = fractal({onSea.x * 0.5f + bend.x, onSea.y * 0.9f + bend.y}, 3, seed + 7);
    const float net = caustics(onSea * 1.15f + bend * 1.2f, 0.5f, seed + 8);
    // They fade before they crowd into a line.
    const float near = smoothstep(0.05f, 0.18f, height);
    const float bright = 0.35f + 0.65f * bump(p.x, sun.x, 0.40f * ends.width());
    const float crests = smoothstep(0.50f, 0.66f, swell);
    const float troughs = smoothstep(0.50f, 0.30f, swell);
    return (Color{0.12f, 1.00f, 0.92f, 0} * (1.0f * net * crests + 0.5f * net) +
            Color{0.10f, 0.80f, 0.70f, 0} * (0.5f * crests) +
            Color{0.02f, 0.16f, 0.10f, 0} * -troughs) *
           (near * bright);
}

} // namespace media
