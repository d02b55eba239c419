#include "Squid.h"

#include "EncodePicture.h"
#include "Noise.h"
#include "Random.h"
#include "Stroke.h"

namespace media {

namespace {

constexpr int SIZE = 256;
constexpr Color SHADE = rgb(150, 40, 110);
constexpr Color SKIN = rgb(250, 120, 140);
constexpr Color LIGHT = rgb(255, 214, 190);

/// The color of the skin with its spots of pigment.
/// \param round  how far the surface faces the light, 0 (away) .. 1 (toward it)
Color skin(float round, Point p, std::uint32_t seed)
{
    const Color c = round < 0.5f ? mix(SHADE, SKIN, round * 2) : mix(SKIN, LIGHT, round * 2 - 1);
    const Cells spots = cells(p * 0.16f, seed);
    return mix(c, SHADE, 0.55f * smoothstep(0.30f, 0.18f, spots.nearest));
}

/// Shades a stroke as a round body of skin.
void paintLimb(Canvas& canvas, const Stroke& stroke, float brightness, std::uint32_t seed)
{
    for (const Touch& touch : stroke.touch(SIZE, SIZE)) {
        const float round = std::sqrt(clamp01(1 - touch.across * touch.across));
        const Point p{static_cast<float>(touch.x), static_cast<float>(touch.y)};
        const float bright = brightness * (0.15f + 0.62f * round - 0.22f * touch.across);
        canvas.blend(touch.x, touch.y, withAlpha(skin(clamp01(bright), p, seed), 1),
                     touch.coverage);
    }
}

void paintArms(Canvas& canvas, Random& random, std::uint32_t seed)
{
    for (int i = 0; i < 10; ++i) {
        // The outer pair are the long tentacles, with a club at the end.
        const bool tentacle = i < 2;
        const float out =
            tentacle ? (i == 0 ? -1.0f : 1.0f) : (static_cast<float>(i - 2) - 3.5f) / 3.5f;
        const float span = tentacle ? 98.0f : random.between(66, 84);
        const float curl = out * random.between(0.5f, 1.1f);
        constexpr int JOINTS = 24;
        Stroke stroke;
        Point at{128 + out * 19, 140};
        for (int k = 0; k <= JOINTS; ++k) {
            const float t = static_cast<float>(k) / JOINTS;
            const float club = tentacle ? 2.6f * bump(t, 0.93f, 0.07f) : 0.0f;
            stroke.add(at, mix(tentacle ? 3.6f : 6.2f, 1.2f, t) + club);
            const float heading = PI + out * -0.5f + curl * t + 0.45f * std::sin(t * 6 + out * 3);
            at = at + turned({0, -1}, heading) * (span / JOINTS);
        }
        paintLimb(canvas, stroke, tentacle ? 0.8f : 0.9f, seed + static_cast<std::uint32_t>(i));
    }
}

void paintMantle(Canvas& canvas, std::uint32_t seed)
{
    Stroke head;
    head.add({128, 120}, 25);
    head.add({128, 142}, 24);
    paintLimb(canvas, head, 1.0f, seed + 22);
    for (const float side : {-1.0f, 1.0f}) {
        Stroke fin;
        fin.add({128 + side * 8, 26}, 2);
        fin.add({128 + side * 26, 42}, 9);
        fin.add({128 + side * 34, 58}, 11);
        fin.add({128 + side * 20, 74}, 3);
        paintLimb(canvas, fin, 0.85f, seed + 20);
    }
    Stroke mantle;
    constexpr int JOINTS = 20;
    for (int k = 0; k <= JOINTS; ++k) {
        const float t = static_cast<float>(k) / JOINTS;
        mantle.add({128, mix(12.0f, 118.0f, t)}, 1.5f + 32 * std::pow(std::sin(t * 1.75f), 0.9f));
    }
    paintLimb(canvas, mantle, 1.08f, seed + 21);
}

/// A dot with a soft edge.
void dab(Canvas& canvas, Point center, float radius, Color color)
{
    Stroke dot;
    dot.add(center, radius);
    dot.add(center + Point{0.01f, 0}, radius);
    for (const Touch& touch : dot.touch(SIZE, SIZE, 1.5f)) {
        canvas.blend(touch.x, touch.y, color, touch.coverage);
    }
}

} // namespace

std::vector<File> makeSquid(const Request& request)
{
    Random random(request.seed, 40);
    const auto seed = static_cast<std::uint32_t>(request.seed);
    Canvas canvas(SIZE, SIZE);
    paintArms(canvas, random, seed);
    paintMantle(canvas, seed);
    for (const float side : {-1.0f, 1.0f}) {
        const Point eye{128 + side * 20, 132};
        dab(canvas, eye, 8.5f, rgb(255, 250, 225));
        dab(canvas, eye + Point{side * 1.2f, 1}, 5.4f, rgb(40, 110, 170));
        dab(canvas, eye + Point{side * 1.2f, 1}, 3.2f, rgb(16, 24, 60));
        dab(canvas, eye + Point{side * 1.2f - 2.2f, -1.6f}, 1.7f, rgb(255, 255, 255));
    }
    return {{"data/squid.png", encodePng(canvas.toRgba()), "256 x 256"}};
}

} // namespace media
