#include "Fish.h"

#include "EncodePicture.h"

namespace media {

namespace {

// The scene draws the fish at half opacity, 31 pixels wide: bright pure colors, few shapes, and no
// dark lines, which would turn brown over blue water.
constexpr Color RIDGE = rgb(255, 206, 0);
constexpr Color ORANGE = rgb(255, 132, 0);
constexpr Color FLANK = rgb(255, 16, 0);
constexpr Color WHITE = rgb(255, 255, 240);
constexpr Color YELLOW = rgb(255, 200, 30);
constexpr Color FIN_TIP = rgb(255, 240, 140);
constexpr Color EYE = rgb(16, 30, 110);

// Along the axis of the fish, which runs from -1 at the top of the picture to 1 at its bottom.
constexpr float SNOUT = -0.93f;
constexpr float SHOULDER = -0.20f; ///< where the body is widest
constexpr float ROOT = 0.56f;      ///< where the tail begins
constexpr float END = 0.94f;

/// Half the width of the body.
float bodyHalfWidth(float y)
{
    constexpr float WIDEST = 0.56f;
    constexpr float NARROWEST = 0.12f;
    if (y <= SNOUT || y >= ROOT) {
        return 0;
    }
    if (y < SHOULDER) {
        const float t = (SHOULDER - y) / (SHOULDER - SNOUT);
        return WIDEST * std::pow(1 - std::pow(t, 2.2f), 0.80f);
    }
    const float t = (y - SHOULDER) / (ROOT - SHOULDER);
    return mix(WIDEST, NARROWEST, smoothstep(0, 1, std::pow(t, 0.92f)));
}

/// The pectoral fin, small and swept back. \return 0 at the body .. 1 at the tip, negative outside
float onBreastFin(float x, float y)
{
    constexpr float TIP = 0.80f;
    const float t = x / TIP;
    const float front = mix(-0.42f, 0.16f, t * t);
    const float back = mix(0.06f, 0.22f, t * t);
    return t < 1 && y > front && y < back ? smoothstep(0.55f, 1, t) : -1;
}

/// The tail: two lobes with a notch between them. \return 0 at its root .. 1 at the tips of the
/// lobes, negative outside
float onTail(float x, float y)
{
    constexpr float BEGIN = ROOT - 0.10f;
    const float t = (y - BEGIN) / (END - BEGIN);
    const float outer = 0.08f + 0.40f * t * std::sqrt(std::max(t, 0.0f));
    const float notch = (t - 0.66f) * 0.62f;
    return t > 0 && t < 1 && x < outer && x > notch ? t : -1;
}

Color body(float x, float y, float half)
{
    const float across = x / half;
    Color c = mix(RIDGE, ORANGE, smoothstep(0.12f, 0.54f, across));
    c = mix(c, FLANK, smoothstep(0.46f, 1.0f, across));
    // The band bends back a little at the flanks, as it does around a round body.
    const float bent = y - 0.10f * across * across;
    c = mix(c, WHITE, smoothstep(0.108f, 0.072f, std::abs(bent + 0.13f)));
    const float eye = length({x - 0.34f, y + 0.54f});
    return mix(c, EYE, smoothstep(0.080f, 0.050f, eye));
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
        return mix(YELLOW, FIN_TIP, fin);
    }
    const float tail = onTail(x, y);
    if (tail >= 0) {
        return mix(mix(ORANGE, YELLOW, smoothstep(0.1f, 0.4f, tail)), FIN_TIP,
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
