#include "Noise.h"

namespace media {

namespace {

float corner(int x, int y, std::uint32_t seed)
{
    return static_cast<float>(hash(x, y, seed) >> 8) * 0x1p-24f;
}

float ease(float t)
{
    return t * t * t * (t * (t * 6 - 15) + 10);
}

} // namespace

float noise(Point p, std::uint32_t seed)
{
    const float fx = std::floor(p.x);
    const float fy = std::floor(p.y);
    const int x = static_cast<int>(fx);
    const int y = static_cast<int>(fy);
    const float u = ease(p.x - fx);
    const float v = ease(p.y - fy);
    return mix(mix(corner(x, y, seed), corner(x + 1, y, seed), u),
               mix(corner(x, y + 1, seed), corner(x + 1, y + 1, seed), u), v);
}

float noise(float x, std::uint32_t seed)
{
    const float fx = std::floor(x);
    const int i = static_cast<int>(fx);
    return mix(corner(i, 0, seed), corner(i + 1, 0, seed), ease(x - fx));
}

float fractal(Point p, int octaves, std::uint32_t seed)
{
    float sum = 0;
    float weight = 0.5f;
    float total = 0;
    for (int i = 0; i < octaves; ++i) {
        sum += weight * noise(p, seed + static_cast<std::uint32_t>(i));
        total += weight;
        weight *= 0.5f;
        // Turning each octave hides the grid.
        p = turned(p * 2.0f, 0.6f);
    }
    return sum / total;
}

Cells cells(Point p, std::uint32_t seed)
{
    const int x = static_cast<int>(std::floor(p.x));
    const int y = static_cast<int>(std::floor(p.y));
    Cells found{9, 9, 0};
    for (int j = y - 1; j <= y + 1; ++j) {
        for (int i = x - 1; i <= x + 1; ++i) {
            const std::uint32_t id = hash(i, j, seed);
            const Point at{static_cast<float>(i) + static_cast<float>(id & 0xFFFFu) / 65536.0f,
                           static_cast<float>(j) + static_cast<float>(id >> 16) / 65536.0f};
            const Point to = at - p;
            const float d = dot(to, to);
            if (d < found.nearest) {
                found = {d, found.nearest, id};
            } else if (d < found.second) {
                found.second = d;
            }
        }
    }
    found.nearest = std::sqrt(found.nearest);
    found.second = std::sqrt(found.second);
    return found;
}

float caustics(Point p, float time, std::uint32_t seed)
{
    // The lines are where two cells meet. Warping the plane first rounds the meshes.
    const Point bend{fractal(p * 0.7f + Point{time, 3.1f}, 2, seed + 11) - 0.5f,
                     fractal(p * 0.7f + Point{7.7f, time}, 2, seed + 23) - 0.5f};
    const Cells c = cells(p + bend * 1.6f + Point{time * 0.3f, -time * 0.2f}, seed);
    const float thread = 1 - clamp01((c.second - c.nearest) * 1.9f);
    return thread * thread * thread;
}

} // namespace media
