#include "Fish.h"

#include "EncodePicture.h"

namespace media {

namespace {

// The scene draws the fish at half opacity, 31 pixels wide: bright pure colors, few shapes, and no
// dark lines, which would turn brown over blue water.
constexpr Color ORANGE = rgb(255, 118, 0);
constexpr Color RIDGE = rgb(255, 176, 48);
constexpr Color FLANK = rgb(255, 84, 0);
constexpr Color WHITE = rgb(255, 255, 255);
constexpr Color YELLOW = rgb(255, 226, 30);
constexpr Color FIN_TIP = rgb(255, 250, 150);
constexpr Color EYE = rgb(20, 40, 120);

/// Half the width of the body at \p y, which runs from -1 at the snout to 1 at the end of the tail.
float bodyHalfWidth(float y)
{
    constexpr float SNOUT = -0.93f;
    constexpr float ROOT = 0.62f; // where the tail begins
    const float t = (y - SNOUT) / (ROOT - SNOUT);
    if (t <= 0 || t >= 1) {
        return 0;
    }
    const float round = std::sqrt(t) * (1 - 0.84f * t * t);
    return 0.56f * round;
}

/// The pectoral fin. \return 0 at the body .. 1 at the tip, negative outside the fin
float onBreastFin(float x, float y)
{
    constexpr float TIP = 0.72f;
    const float t = x / TIP;
    const float front = mix(-0.46f, 0.16f, t * t * 0.65f + t * 0.35f);
    const float back = mix(0.02f, 0.16f, std::sqrt(std::max(t, 0.0f)));
    return t < 1 && y > front && y < back ? t : -1;
}

/// The tail: two lobes with a notch between them. \return 0 at its root .. 1 at the tips of the
/// lobes, negative outside
float onTail(float x, float y)
{
    constexpr float ROOT = 0.42f;
    constexpr float END = 0.94f;
    const float t = (y - ROOT) / (END - ROOT);
    const float outer = 0.06f + 0.48f * t * std::sqrt(std::max(t, 0.0f));
    const float notch = (t - 0.56f) * 0.66f;
    return t > 0 && t < 1 && x < outer && x > notch ? t : -1;
}

Color body(float x, float y, float half)
{
    const float across = x / half;
    Color c = mix(RIDGE, ORANGE, smoothstep(0.0f, 0.45f, across));
    c = mix(c, FLANK, smoothstep(0.45f, 1.0f, across));
    // The bands bend back a little at the flanks, as they do around a round body.
    const float bent = y - 0.07f * across * across;
    const float bands = std::max(smoothstep(0.115f, 0.075f, std::abs(bent + 0.44f)),
                                 smoothstep(0.105f, 0.070f, std::abs(bent - 0.06f)));
    c = mix(c, WHITE, bands);
    const float eye = length({x - 0.22f, y + 0.66f});
    return mix(c, EYE, smoothstep(0.065f, 0.04f, eye));
}

/// \param x  distance from the axis of the fish \param y  -1 at the snout .. 1 at the tail's end
Color fishAt(float x, float y)
{
    const float half = bodyHalfWidth(y);
    if (x < half) {
        return body(x, y, half);
    }
    const float fin = onBreastFin(x, y);
    if (fin >= 0) {
        return mix(YELLOW, FIN_TIP, smoothstep(0.4f, 1.0f, fin));
    }
    const float tail = onTail(x, y);
    if (tail >= 0) {
        return mix(mix(FLANK, YELLOW, smoothstep(0.1f, 0.4f, tail)), FIN_TIP,
                   smoothstep(0.5f, 1.0f, tail));
    }
    return withAlpha(YELLOW, 0);
}

} // namespace

std::vector<File> makeFish(const Request&)
{
    // A margin, so that linear filtering meets transparent texels at the edge of the texture.
    constexpr float SCALE = 1.01f;
    Canvas canvas(64, 64);
    canvas.paint(
        8, [](Point p) { return fishAt(std::abs(p.x * 2 - 1) * SCALE, (p.y * 2 - 1) * SCALE); });
    return {{"data/fish0.png", encodePng(canvas.toRgba()), "64 x 64"}};
}

} // namespace media
