#pragma once

#include "Point.h"

namespace media {

/// A colour with channels 0 .. 1, as a screen shows them (not linear light): the scene blends them
/// as they are. Whether the alpha is already multiplied in is said where it is used.
struct Color {
    float r = 0;
    float g = 0;
    float b = 0;
    float a = 0;
};

/// An opaque colour from bytes, as a painting program shows them.
constexpr Color rgb(int red, int green, int blue, float alpha = 1)
{
    return {static_cast<float>(red) / 255, static_cast<float>(green) / 255,
            static_cast<float>(blue) / 255, alpha};
}

constexpr Color operator+(Color a, Color b)
{
    return {a.r + b.r, a.g + b.g, a.b + b.b, a.a + b.a};
}

constexpr Color operator*(Color c, float k)
{
    return {c.r * k, c.g * k, c.b * k, c.a * k};
}

constexpr Color mix(Color a, Color b, float t)
{
    return {mix(a.r, b.r, t), mix(a.g, b.g, t), mix(a.b, b.b, t), mix(a.a, b.a, t)};
}

/// Light added as on a slide screen: the brighter the ground, the less it adds, so that nothing is
/// cut off at white and colours keep their hue. The alpha is that of \p ground.
constexpr Color screen(Color ground, Color light)
{
    return {ground.r + light.r * (1 - ground.r), ground.g + light.g * (1 - ground.g),
            ground.b + light.b * (1 - ground.b), ground.a};
}

/// The colour with another alpha.
constexpr Color withAlpha(Color c, float alpha)
{
    return {c.r, c.g, c.b, alpha};
}

/// The colour with its channels multiplied by \p k and its alpha as it was.
constexpr Color lit(Color c, float k)
{
    return {c.r * k, c.g * k, c.b * k, c.a};
}

} // namespace media
