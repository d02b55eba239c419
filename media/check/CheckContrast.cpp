#include "CheckContrast.h"

#include <cmath>
#include <cstddef>

namespace media {

namespace {

/// Opacity that the scene gives to sprites.
constexpr float OPACITY = 0.5f;

/// A texel with this alpha or more is part of the figure.
constexpr int SOLID = 64;

/// A color of CIE 1976 L*a*b*, for the white of D65.
struct Lab {
    float lightness;
    float a;
    float b;
};

/// sRGB to light, 0 .. 1.
float linear(float channel)
{
    const float v = channel / 255;
    return v <= 0.04045f ? v / 12.92f : std::pow((v + 0.055f) / 1.055f, 2.4f);
}

float curve(float v)
{
    return v > 0.008856f ? std::cbrt(v) : 7.787f * v + 16.0f / 116;
}

Lab labOf(const WaterColor& color)
{
    const float r = linear(color[0]);
    const float g = linear(color[1]);
    const float b = linear(color[2]);
    const float x = curve((0.4124f * r + 0.3576f * g + 0.1805f * b) / 0.9505f);
    const float y = curve(0.2126f * r + 0.7152f * g + 0.0722f * b);
    const float z = curve((0.0193f * r + 0.1192f * g + 0.9505f * b) / 1.0890f);
    return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

/// A texel as the scene shows it over the water.
WaterColor over(const unsigned char* texel, const WaterColor& water)
{
    const float alpha = OPACITY * static_cast<float>(texel[3]) / 255;
    WaterColor shown{};
    for (std::size_t c = 0; c < 3; ++c) {
        shown[c] = water[c] + (static_cast<float>(texel[c]) - water[c]) * alpha;
    }
    return shown;
}

/// The mean over the solid texels; 0 when there are none.
float meanDifference(const Sprite& sprite, const WaterColor& water)
{
    float sum = 0;
    int count = 0;
    for (int y = 0; y < sprite.height(); ++y) {
        for (int x = 0; x < sprite.width(); ++x) {
            if (sprite.alpha(x, y) >= SOLID) {
                sum += colorDifference(over(sprite.at(x, y), water), water);
                ++count;
            }
        }
    }
    return count > 0 ? sum / static_cast<float>(count) : 0;
}

} // namespace

float colorDifference(const WaterColor& one, const WaterColor& other)
{
    const Lab from = labOf(one);
    const Lab to = labOf(other);
    return std::hypot(to.lightness - from.lightness, to.a - from.a, to.b - from.b);
}

void checkContrast(const Sprite& sprite, const std::vector<WaterColor>& water, FileReport& report)
{
    // Some 2 can be told apart side by side; a small thing on its way needs more.
    constexpr float FOUND = 15;
    std::size_t lost = 0;
    for (const WaterColor& part : water) {
        lost += meanDifference(sprite, part) < FOUND ? 1 : 0;
    }
    if (lost > 0) {
        report.hint("is hard to find over " + std::to_string(100 * lost / water.size()) +
                    " % of the water: its colors, at half opacity, are too much like those "
                    "behind it; make it lighter, or of another hue");
    }
}

} // namespace media
