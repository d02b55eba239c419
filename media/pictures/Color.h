#pragma once

#include "Point.h"

namespace media {

/// A color with channels 0 .. 1, as a screen shows them (not linear light): the scene blends them
/// as they are. Its user says whether the alpha is straight or premultiplied.
struct Color {
    float r = 0;
    float g = 0;
    float b = 0;
    float a = 0;
};

/// A color from bytes 0 .. 255.
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

/// The blend mode "screen": the brighter the ground, the less the light adds, so that nothing is
/// clipped at white. The alpha is that of \p ground.
constexpr Color screen(Color ground, Color light)
{
    return {ground.r + light.r * (1 - ground.r), ground.g + light.g * (1 - ground.g),
            ground.b + light.b * (1 - ground.b), ground.a};
}

/// The color with another alpha.
constexpr Color withAlpha(Color c, float alpha)
{
    return {c.r, c.g, c.b, alpha};
}

/// The color with its channels multiplied by \p k and its alpha as it was.
constexpr Color lit(Color c, float k)
{
    return {c.r * k, c.g * k, c.b * k, c.a};
}

} // namespace media
