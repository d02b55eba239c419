#include "Kelp.h"

#include "Noise.h"
#include "Stroke.h"

namespace media {

namespace {

// Colors in the sun and in the shade.
constexpr Color BLADE_DARK = rgb(0, 74, 76);
constexpr Color BLADE_GREEN = rgb(14, 176, 88);
constexpr Color BLADE_SUN = rgb(96, 250, 84);
constexpr Color STEM_DARK = rgb(4, 80, 70);
constexpr Color STEM_SUN = rgb(110, 206, 80);

class Painter {
public:
    Painter(Canvas& on, const KelpForest& of, const Light& by, Random& byChance)
        : canvas(on), forest(of), light(by), size(on.unit()), random(byChance)
    {
    }

    void plant(float x, float top);

private:
    void blade(Point root, float angle, float bend, float span);
    void bulb(Point at, float angle, float radius);
    Color tint(Color color, Point p) const;

    Canvas& canvas;
    const KelpForest& forest;
    const Light& light;
    const float size;
    Random& random;
};

/// The color as it looks through the haze of the forest's distance.
Color Painter::tint(Color color, Point p) const
{
    return withAlpha(mix(color, light.water(p), forest.haze), 1);
}

void Painter::blade(Point root, float angle, float bend, float span)
{
    constexpr int JOINTS = 14;
    const float wave = random.between(0, 6.28f);
    const float thick = span * random.between(0.095f, 0.125f);
    const float own = random.between(-0.12f, 0.12f);
    Stroke stroke;
    Point at = root;
    Point tip = root;
    for (int i = 0; i <= JOINTS; ++i) {
        const float t = static_cast<float>(i) / JOINTS;
        // Lance-shaped: widest soon after the float, pointed at the end, with a ruffled edge.
        const float lance = std::sqrt(t) * (1 - t) * 2.4f + 0.06f * (1 - t);
        const float ruffle = 1 + 0.13f * std::sin(t * 26 + wave);
        stroke.add(canvas.pixel(at), thick * lance * ruffle * size * 0.5f + 0.2f);
        const float heading = angle + bend * t + 0.16f * std::sin(t * 5.5f + wave);
        tip = at;
        at = at + turned({0, -1}, heading) * (span / JOINTS);
    }
    const Point way = tip - root;
    // Which edge of the blade looks up to the light.
    const float up = way.x > 0 ? -1.0f : 1.0f;
    for (const Touch& touch : stroke.touch(canvas.width(), canvas.height())) {
        const Point p = canvas.center(touch.x, touch.y);
        const float sun = light.sunlight(p);
        const float beam = light.shafts(p);
        const float rib = bump(touch.across, 0, 0.10f);
        const float folds = std::sin(touch.along * 34 + wave + std::abs(touch.across) * 2.2f);
        const float edge = smoothstep(0.55f, 1.0f, std::abs(touch.across));
        float glow = sun * (0.95f + 0.35f * beam) + own * sun;
        glow += sun * (0.16f * folds * std::abs(touch.across) + 0.26f * touch.across * up);
        glow += 0.20f * sun * edge - 0.16f * sun * rib;
        glow *= 0.66f + 0.40f * smoothstep(0.0f, 0.5f, touch.along);
        const Color c = glow < 0.45f ? mix(BLADE_DARK, BLADE_GREEN, clamp01(glow / 0.45f))
                                     : mix(BLADE_GREEN, BLADE_SUN, clamp01((glow - 0.45f) / 0.6f));
        canvas.blend(touch.x, touch.y, tint(c, p), touch.coverage);
    }
}

void Painter::bulb(Point at, float angle, float radius)
{
    Stroke stroke;
    const Point way = turned({0, -1}, angle) * radius;
    stroke.add(canvas.pixel(at - way), radius * 0.55f * size);
    stroke.add(canvas.pixel(at), radius * size);
    stroke.add(canvas.pixel(at + way * 1.3f), radius * 0.45f * size);
    for (const Touch& touch : stroke.touch(canvas.width(), canvas.height())) {
        const Point p = canvas.center(touch.x, touch.y);
        const Point off = (p - at) * (1 / radius);
        const float sun = light.sunlight(p);
        const float shine = bump(length(off - Point{-0.3f, -0.45f}), 0, 0.45f);
        Color c = mix(STEM_DARK, STEM_SUN, clamp01(sun * (0.9f - 0.4f * off.y)));
        c = screen(c, Color{0.7f, 0.9f, 0.6f, 0} * (shine * sun));
        canvas.blend(touch.x, touch.y, tint(c, p), touch.coverage);
    }
}

void Painter::plant(float x, float top)
{
    constexpr int JOINTS = 60;
    const float phase = random.between(0, 6.28f);
    const float sway = random.between(0.018f, 0.046f);
    const float lean = random.between(0.0f, 0.06f);
    const float height = forest.root - top;
    const auto stem = [&](float t) {
        const float aside = lean * t * t + sway * t * std::sin(t * 4.4f + phase) +
                            0.25f * sway * std::sin(t * 13 + 2 * phase);
        return Point{std::clamp(x + aside, light.sides().at(0.03f), light.sides().at(0.97f)),
                     forest.root - height * t};
    };
    const float thick = forest.leaf * 0.022f;
    Stroke stroke;
    for (int i = 0; i <= JOINTS; ++i) {
        const float t = static_cast<float>(i) / JOINTS;
        stroke.add(canvas.pixel(stem(t)), thick * mix(1.2f, 0.5f, t) * size);
    }
    for (const Touch& touch : stroke.touch(canvas.width(), canvas.height())) {
        const Point p = canvas.center(touch.x, touch.y);
        const float sun = light.sunlight(p) * (0.9f - 0.4f * touch.across);
        canvas.blend(touch.x, touch.y, tint(mix(STEM_DARK, STEM_SUN, clamp01(sun)), p),
                     touch.coverage);
    }
    const float spacing = forest.leaf * 0.21f;
    const int blades = static_cast<int>(height / spacing);
    int side = random.below(2);
    for (int i = 1; i <= blades; ++i) {
        const float t = (static_cast<float>(i) + random.between(-0.4f, 0.4f)) /
                        (static_cast<float>(blades) + 0.5f);
        const float out = side == 0 ? -1.0f : 1.0f;
        side = 1 - side;
        // Low blades hang outward, high ones stand up. The current bends all to the right.
        const float angle = out * mix(1.45f, 0.50f, t) * random.between(0.65f, 1.25f);
        const float bend = out * random.between(-0.7f, 0.6f) + 0.30f;
        float span = forest.leaf * random.between(0.6f, 1.15f) * mix(1.0f, 0.45f, t * t * t);
        const Point root = stem(t);
        // A blade that would leave the picture stays shorter.
        const float room = out < 0 ? root.x - light.sides().left : light.sides().right - root.x;
        span = std::min(span, 0.85f * std::max(room, 0.0f));
        const float radius = forest.leaf * 0.042f * mix(1.0f, 0.6f, t);
        blade(root + turned({0, -1}, angle) * (radius * 1.6f), angle, bend, span);
        bulb(root + turned({0, -1}, angle) * (radius * 1.4f), angle, radius);
    }
}

} // namespace

void paintKelp(Canvas& canvas, const KelpForest& forest, const Light& light, Random random)
{
    const Sides sides = light.sides();
    Painter painter(canvas, forest, light, random);
    const int plants =
        static_cast<int>(std::lround(static_cast<float>(forest.plants) * sides.width()));
    for (int i = 0; i < plants; ++i) {
        for (const bool right : {false, true}) {
            const float inward =
                (static_cast<float>(i) + random.between(0.1f, 0.9f)) / static_cast<float>(plants);
            // The tallest stand at the sides: the middle is kept free for the fish.
            const float lower = inward * random.between(0.30f, 0.55f);
            const float uneven = random.between(0, 0.20f);
            const float place = mix(0.07f, forest.reach, inward);
            painter.plant(sides.at(right ? 1 - place : place), forest.top + lower + uneven);
        }
    }
    canvas.blur(forest.deviation * canvas.unit());
}

} // namespace media
