#include "Reef.h"

#include "Noise.h"
#include "Stroke.h"

namespace media {

namespace {

/// Paints corals, sponges and sea grass onto a canvas. Borrows all that it is given.
class Gardener {
public:
    Gardener(Canvas& on, const Light& by, Random& byChance)
        : canvas(on), light(by), size(on.unit()), random(byChance)
    {
    }

    void branch(Point root, float angle, float span, float thick, int forks, Color color,
                float haze);
    void tube(Point root, float angle, float span, float thick, Color color, float haze);
    void grass(Point root, float span, float haze);

private:
    Canvas& canvas;
    const Light& light;
    const float size;
    Random& random;
};

/// A branch of coral that forks \p forks times, lighter toward its tips.
void Gardener::branch(Point root, float angle, float span, float thick, int forks, Color color,
                      float haze)
{
    Stroke stroke;
    Point at = root;
    const float bend = random.between(-0.5f, 0.5f);
    constexpr int JOINTS = 5;
    for (int i = 0; i <= JOINTS; ++i) {
        const float t = static_cast<float>(i) / JOINTS;
        stroke.add(canvas.pixel(at), thick * mix(1.0f, 0.78f, t) * size);
        at = at + turned({0, -1}, angle + bend * t) * (span / JOINTS);
    }
    const Point tip = at;
    for (const Touch& touch : stroke.touch(canvas.width(), canvas.height())) {
        const Point p = canvas.center(touch.x, touch.y);
        const float round = std::sqrt(clamp01(1 - touch.across * touch.across));
        const float knobs = noise(p * 260, 77) - 0.5f;
        const float bright = 0.60f + 0.36f * round - 0.16f * touch.across + 0.30f * knobs +
                             (forks == 0 ? 0.30f * touch.along : 0.0f);
        const Color c = screen(lit(color, bright),
                               Color{0.25f, 0.25f, 0.22f, 0} * (forks == 0 ? touch.along : 0.0f));
        canvas.blend(touch.x, touch.y, withAlpha(mix(c, light.water(p), haze), 1), touch.coverage);
    }
    if (forks > 0) {
        const float spread = random.between(0.32f, 0.55f);
        for (const float side : {-1.0f, 1.0f}) {
            const float turn = side * spread + random.between(-0.15f, 0.15f);
            const float shorter = random.between(0.66f, 0.9f);
            branch(tip, angle + bend + turn, span * shorter, thick * 0.76f, forks - 1, color, haze);
        }
    }
}

/// A tube sponge: a chimney with a dark mouth.
void Gardener::tube(Point root, float angle, float span, float thick, Color color, float haze)
{
    Stroke stroke;
    constexpr int JOINTS = 8;
    Point at = root;
    for (int i = 0; i <= JOINTS; ++i) {
        const float t = static_cast<float>(i) / JOINTS;
        stroke.add(canvas.pixel(at), thick * (0.75f + 0.3f * t + 0.06f * std::sin(t * 14)) * size);
        at = at + turned({0, -1}, angle * (1 - 0.5f * t)) * (span / JOINTS);
    }
    for (const Touch& touch : stroke.touch(canvas.width(), canvas.height())) {
        const Point p = canvas.center(touch.x, touch.y);
        const float round = std::sqrt(clamp01(1 - touch.across * touch.across));
        const float pores = noise(p * 230, 41) - 0.5f;
        float bright =
            0.46f + 0.36f * round - 0.22f * touch.across + 0.26f * touch.along + 0.22f * pores;
        if (touch.along > 0.96f) {
            bright += 0.2f;
        }
        canvas.blend(touch.x, touch.y, withAlpha(mix(lit(color, bright), light.water(p), haze), 1),
                     touch.coverage);
    }
    const Point mouth = at + turned({0, -1}, angle * 0.5f) * (thick * 0.30f);
    Stroke hole;
    hole.add(canvas.pixel(mouth - Point{thick * 0.42f, 0}), thick * 0.30f * size);
    hole.add(canvas.pixel(mouth + Point{thick * 0.42f, 0}), thick * 0.30f * size);
    for (const Touch& touch : hole.touch(canvas.width(), canvas.height())) {
        const Point p = canvas.center(touch.x, touch.y);
        canvas.blend(touch.x, touch.y, withAlpha(mix(lit(color, 0.34f), light.water(p), haze), 1),
                     touch.coverage);
    }
}

/// A tuft of sea grass that leans with the current.
void Gardener::grass(Point root, float span, float haze)
{
    const int blades = 7 + random.below(6);
    for (int n = 0; n < blades; ++n) {
        Stroke stroke;
        constexpr int JOINTS = 10;
        const float angle = random.between(-0.45f, 0.45f);
        const float bend = random.between(0.1f, 0.9f);
        const float tall = span * random.between(0.55f, 1.0f);
        const float own = random.between(0.75f, 1.2f);
        Point at = root + Point{random.between(-0.25f, 0.25f) * span, 0};
        for (int i = 0; i <= JOINTS; ++i) {
            const float t = static_cast<float>(i) / JOINTS;
            stroke.add(canvas.pixel(at), span * 0.028f * (1 - t * t) * size + 0.15f);
            at = at + turned({0, -1}, angle + bend * t) * (tall / JOINTS);
        }
        for (const Touch& touch : stroke.touch(canvas.width(), canvas.height())) {
            const Point p = canvas.center(touch.x, touch.y);
            const Color c = mix(rgb(0, 100, 80), rgb(90, 226, 90), touch.along * own);
            canvas.blend(touch.x, touch.y,
                         withAlpha(mix(lit(c, 1 - 0.2f * touch.across), light.water(p), haze), 1),
                         touch.coverage);
        }
    }
}

} // namespace

void paintReef(Canvas& canvas, const Light& light, Random random)
{
    Gardener gardener(canvas, light, random);
    constexpr Color ROSE = rgb(255, 70, 150);
    constexpr Color AMBER = rgb(255, 172, 40);
    constexpr Color VIOLET = rgb(196, 100, 255);
    constexpr Color CREAM = rgb(240, 225, 180);
    struct Patch {
        float x;
        float y;
        float span;
        Color color;
        bool tubes;
        float haze;
    };
    static constexpr Patch PATCHES[] = {
        {0.345f, 0.862f, 0.028f, AMBER, false, 0.46f},
        {0.250f, 0.880f, 0.034f, VIOLET, true, 0.36f},
        {0.685f, 0.862f, 0.034f, ROSE, false, 0.40f},
        {0.780f, 0.905f, 0.046f, AMBER, false, 0.24f},
        {0.840f, 0.925f, 0.060f, VIOLET, true, 0.18f},
        {0.185f, 0.940f, 0.060f, ROSE, false, 0.14f},
        {0.045f, 0.935f, 0.060f, AMBER, false, 0.12f},
        {0.115f, 0.970f, 0.066f, VIOLET, true, 0.08f},
        {0.905f, 0.970f, 0.070f, ROSE, false, 0.06f},
        {0.965f, 0.955f, 0.060f, CREAM, false, 0.06f},
        {0.020f, 0.985f, 0.050f, CREAM, false, 0.04f},
        {0.300f, 0.945f, 0.056f, AMBER, false, 0.06f},
        {0.735f, 0.965f, 0.062f, VIOLET, false, 0.05f},
        {0.350f, 0.975f, 0.040f, ROSE, true, 0.03f},
    };
    for (const Patch& patch : PATCHES) {
        const Point root{light.sides().at(patch.x), patch.y};
        if (patch.tubes) {
            for (int i = 0; i < 5; ++i) {
                const float off = (static_cast<float>(i) - 2) * patch.span * 0.30f;
                gardener.tube(root + Point{off, std::abs(off) * 0.3f}, off / patch.span * 0.6f,
                              patch.span * random.between(0.7f, 1.3f), patch.span * 0.15f,
                              patch.color, patch.haze);
            }
        } else {
            for (const float angle : {-0.75f, 0.7f, -0.3f, 0.3f, 0.0f}) {
                const float turn = random.between(-0.1f, 0.1f);
                const float span = patch.span * random.between(0.40f, 0.5f);
                gardener.branch(root, angle + turn, span, patch.span * 0.085f, 3, patch.color,
                                patch.haze);
            }
        }
    }
    for (int i = 0; i < 26; ++i) {
        const float y = random.between(0.885f, 1.0f);
        const float out = random.between(0.18f, 0.5f);
        const float x = 0.5f + (random.below(2) == 0 ? -out : out);
        gardener.grass({light.sides().at(x), y},
                       random.between(0.02f, 0.05f) * (0.4f + 6 * (y - 0.85f)),
                       clamp01((0.96f - y) * 6));
    }
}

} // namespace media
