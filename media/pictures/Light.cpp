#include "Light.h"

#include "Noise.h"

#include <iterator>

namespace media {

namespace {

constexpr Point SUN{0.40f, -0.30f};

/// The height, in the picture, at which the surface of the sea vanishes in the distance.
constexpr float SEA_HORIZON = 0.17f;

} // namespace

Color Light::water(Point p) const
{
    struct Stop {
        float y;
        Color color;
    };
    static constexpr Stop STOPS[] = {
        {0.00f, rgb(30, 172, 182)}, {0.10f, rgb(24, 164, 184)}, {0.25f, rgb(12, 136, 178)},
        {0.45f, rgb(5, 96, 156)},   {0.68f, rgb(3, 58, 116)},   {0.86f, rgb(6, 54, 100)},
        {1.00f, rgb(5, 44, 80)},
    };
    // Noise of low frequency keeps the gradient from showing as straight bands.
    const float drift = 0.10f * (fractal({p.x * 2.2f, p.y * 3.0f}, 3, seed + 40) - 0.5f);
    const float y = clamp01(p.y + drift * smoothstep(0, 0.3f, p.y));
    Color c = STOPS[0].color;
    for (std::size_t i = 1; i < std::size(STOPS); ++i) {
        c = mix(c, STOPS[i].color, smoothstep(STOPS[i - 1].y, STOPS[i].y, y));
    }
    // The glow around the sun, and the dark to both sides of it.
    const float away = length({(p.x - SUN.x) * 1.25f, (p.y - SUN.y) * 0.8f});
    const float glow = std::exp(-away * away * 4.5f);
    const float side = std::abs(p.x - SUN.x);
    c = lit(c, 1.0f - 0.55f * smoothstep(0.1f, 0.75f, side) * smoothstep(1.0f, 0.1f, p.y) -
                   0.10f * side);
    return screen(c, Color{0.04f, 0.50f, 0.44f, 0} * glow);
}

float Light::shafts(Point p) const
{
    const Point ray = p - SUN;
    const float angle = std::atan2(ray.x, ray.y);
    const float far = length(ray);
    // The deeper, the broader the rays.
    const float deep = smoothstep(0.1f, 0.9f, p.y);
    const float fine = noise({angle * 46, far * 0.7f}, seed + 1);
    const float middle = noise({angle * 19 + 3, far * 0.5f}, seed + 2);
    const float broad = noise({angle * 8 + 9, far * 0.4f}, seed + 3);
    const float sum =
        broad * 0.38f + middle * mix(0.36f, 0.50f, deep) + fine * mix(0.26f, 0.12f, deep);
    const float rays = smoothstep(mix(0.40f, 0.34f, deep), mix(0.74f, 0.86f, deep), sum);
    const float fan = bump(angle, 0.04f, 0.75f);
    const float fade = smoothstep(1.05f, 0.05f, p.y);
    return rays * fan * fade;
}

float Light::sunlight(Point p) const
{
    const float side = std::abs(p.x - SUN.x);
    return clamp01(std::exp(-p.y * 1.5f) * (1.2f - 0.4f * side));
}

Color Light::surface(Point p) const
{
    if (p.y >= SEA_HORIZON) {
        return {};
    }
    // Perspective: the waves lie on a plane above, and crowd together toward the horizon.
    const float height = SEA_HORIZON - p.y;
    const float away = 0.10f / std::max(height, 0.012f);
    const Point onSea{(p.x - SUN.x) * away * 5.0f, away * 3.2f};
    const Point bend{fractal(onSea * 0.8f, 3, seed + 5) - 0.5f,
                     fractal(onSea * 0.9f, 3, seed + 6) - 0.5f};
    const float swell = fractal({onSea.x * 0.5f + bend.x, onSea.y * 0.9f + bend.y}, 3, seed + 7);
    const float net = caustics(onSea * 1.15f + bend * 1.2f, 0.5f, seed + 8);
    const float near = smoothstep(0.01f, 0.10f, height);
    const float sun = 0.35f + 0.65f * bump(p.x, SUN.x, 0.42f);
    const float strength = near * sun;
    const float crests = 0.9f * net + 0.7f * smoothstep(0.45f, 0.75f, swell);
    const float troughs = smoothstep(0.50f, 0.20f, swell);
    return Color{0.10f, 0.72f, 0.68f, 0} * (strength * crests) +
           Color{0.05f, 0.30f, 0.30f, 0} * (-strength * troughs);
}

} // namespace media
