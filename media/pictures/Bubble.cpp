#include "Bubble.h"

#include "EncodePicture.h"

namespace media {

namespace {

/// A layer of light: a color and how opaque it is.
struct Glint {
    Color color;
    float alpha;
};

/// Lays \p over over \p under; colors without the alpha multiplied in.
Color cover(Color under, Glint over)
{
    const float a = clamp01(over.alpha);
    const float sum = a + under.a * (1 - a);
    if (sum <= 0) {
        return withAlpha(over.color, 0);
    }
    const float k = a / sum;
    return withAlpha(mix(withAlpha(under, 1), withAlpha(over.color, 1), k), sum);
}

/// \param q  from the bubble's center, its radius being 1; y points down
Color bubbleAt(Point q)
{
    constexpr Color AIR = rgb(190, 245, 255);
    constexpr Color RIM = rgb(225, 255, 255);
    constexpr Color WARM = rgb(255, 214, 150);
    constexpr Color GLASS = rgb(214, 236, 255);
    const float r = length(q);
    if (r >= 1) {
        return withAlpha(RIM, 0);
    }
    // Schlick's approximation of Fresnel's law for a sphere of air in water: the middle reflects
    // nothing and stays nearly transparent, the rim reflects everything.
    const float facing = std::sqrt(1 - r * r);
    const float fresnel = 0.02f + 0.98f * std::pow(1 - facing, 1.7f);
    const float towardsLight = dot(q * (1 / std::max(r, 0.01f)), {-0.55f, -0.83f});
    Color c = withAlpha(AIR, 0.02f);
    // The scene draws a circle into the bubble that pulses: it goes from the middle towards the
    // top, and its diameter is at most the radius. This glow is the brighter the larger the circle
    // through a point is, so that each of them runs along the glow as the edge of a reflection.
    const float circle = q.y < 0 ? r * r / -q.y : 2.0f;
    const float lens = smoothstep(0.10f, 0.95f, circle) * smoothstep(1.30f, 0.98f, circle);
    c = cover(c, {GLASS, 0.46f * lens * smoothstep(0.24f, 0.55f, r)});
    c = cover(c, {RIM, fresnel * (1.05f + 0.35f * towardsLight)});
    // Light that has gone through the bubble gathers at the far side of its wall.
    const float far = smoothstep(0.35f, 1.0f, -towardsLight) * bump(r, 0.80f, 0.11f);
    c = cover(c, {WARM, 0.95f * far});
    // The reflection of the sun, and its mirror image inside.
    const Point sun = turned(q - Point{-0.42f, -0.49f}, -0.72f);
    c = cover(
        c, {rgb(255, 255, 255), 1.25f * bump(length({sun.x * 0.66f, sun.y * 1.25f}), 0, 0.155f)});
    c = cover(c, {rgb(255, 255, 255), 0.95f * bump(length(q - Point{0.34f, 0.50f}), 0, 0.10f)});
    return c;
}

} // namespace

std::vector<File> makeBubble(const Request&)
{
    // The radius leaves two transparent texels at each side.
    constexpr float RADIUS = 29.5f / 32;
    Canvas canvas(64, 64);
    canvas.paint(8, [](Point p) {
        return bubbleAt(Point{p.x * 2 - 1, p.y * 2 - 1} * (1 / RADIUS));
    });
    return {{"data/bubble.png", encodePng(canvas.toRgba()), "64 x 64"}};
}

} // namespace media
