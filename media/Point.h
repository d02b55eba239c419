#pragma once

#include <algorithm>
#include <cmath>

namespace media {

constexpr float PI = 3.14159265f;

/// A point or a direction in the plane. Its user says the unit and which way y points.
struct Point {
    float x = 0;
    float y = 0;
};

constexpr Point operator+(Point a, Point b)
{
    return {a.x + b.x, a.y + b.y};
}

constexpr Point operator-(Point a, Point b)
{
    return {a.x - b.x, a.y - b.y};
}

constexpr Point operator*(Point a, float k)
{
    return {a.x * k, a.y * k};
}

constexpr float dot(Point a, Point b)
{
    return a.x * b.x + a.y * b.y;
}

inline float length(Point a)
{
    return std::sqrt(dot(a, a));
}

/// \p a turned counter-clockwise where y points up (clockwise where it points down).
inline Point turned(Point a, float radians)
{
    const float c = std::cos(radians);
    const float s = std::sin(radians);
    return {c * a.x - s * a.y, s * a.x + c * a.y};
}

constexpr float clamp01(float v)
{
    return std::clamp(v, 0.0f, 1.0f);
}

/// Linear: \p a at t = 0, \p b at t = 1, and the same line outside 0 .. 1.
constexpr float mix(float a, float b, float t)
{
    return a + (b - a) * t;
}

constexpr Point mix(Point a, Point b, float t)
{
    return {mix(a.x, b.x, t), mix(a.y, b.y, t)};
}

/// 0 below \p from, 1 above \p to, an S-shaped curve in between. With from > to it falls instead.
constexpr float smoothstep(float from, float to, float v)
{
    const float t = clamp01((v - from) / (to - from));
    return t * t * (3 - 2 * t);
}

/// 1 at the center, falling to exp(-1) at a distance of \p width from it.
inline float bump(float v, float center, float width)
{
    const float t = (v - center) / width;
    return std::exp(-t * t);
}

} // namespace media
