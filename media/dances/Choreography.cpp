#include "Choreography.h"

#include "Rates.h"

namespace media {

namespace {

/// A part of a figure's movement, in seconds since its phrase began.
struct Span {
    double from;
    double to;
};

constexpr Span STROKE{0.0, 0.65};
constexpr Span ARC{0.48, 2.12};
constexpr Span SINK{2.06, 3.12};
constexpr double STROKE_HEIGHT = 0.16;
constexpr double SINK_DEPTH = 0.17;

/// The scene tilts a figure that moves sideways, by five degrees about every twentieth of a second,
/// up to 40 degrees. Moving back a little, for as long as eight such steps take, sets it upright.
constexpr Span RIGHTING{2.12, 2.32};
constexpr double RIGHTING_WAY = 0.006;

/// The first phrase brings the figures up from below, the coda takes them home.
constexpr Span RISE{0.0, 3.1};
constexpr Span GOING_HOME{0.3, 7.6};
constexpr Span CROSSING_HOME{0.3, 3.0};

/// The leader starts with the phrase, each of the others so many seconds after the one before.
constexpr double STAGGER = 0.09;

/// How much of a movement is done, 0 .. 1. It starts and ends at rest; in between its speed is
/// constant, but for \p pulses beats of the bell.
double progress(Span span, double t, int pulses)
{
    const double u = (t - span.from) / (span.to - span.from);
    if (u <= 0) {
        return 0;
    }
    if (u >= 1) {
        return 1;
    }
    // The speed is a trapezium with rounded ramps of a fifth each; this is its integral.
    constexpr double RAMP = 0.20;
    const auto ramp = [](double v) { return v * v * v * (1 - v / 2); };
    double way = 0;
    if (u < RAMP) {
        way = ramp(u / RAMP) * RAMP;
    } else if (u <= 1 - RAMP) {
        way = u - RAMP / 2;
    } else {
        way = (1 - RAMP) - ramp((1 - u) / RAMP) * RAMP;
    }
    way /= 1 - RAMP;
    constexpr double DEPTH = 0.15;
    constexpr double TURN = 6.283185307179586;
    return pulses == 0 ? way : way - DEPTH * std::sin(TURN * pulses * way) / (TURN * pulses);
}

double lerp(double a, double b, double t)
{
    return a + (b - a) * t;
}

/// One figure on its way from place to place.
class Figure {
public:
    Figure(int which, bool without_swing) : number(which), marked(without_swing), at(homeOf(which))
    {
    }

    /// Where the figure is, \p t seconds after the start of the phrase that leads it to \p goal.
    Point inPhrase(double t, Point goal, bool entrance, int order) const;

    /// Where the figure is, \p t seconds after the start of the coda.
    Point inCoda(double t) const;

    /// The phrase is over and the figure is where it was led.
    void arrive(Point goal) { at = goal; }

private:
    double across(double t, double goal, Span span) const;

    int number;
    bool marked;
    Point at;
};

/// The x coordinate: a little beyond the goal on the arc, and back while the figure rights itself.
double Figure::across(double t, double goal, Span span) const
{
    const double from = at.x;
    if (goal == from) {
        return from;
    }
    const double side = goal > from ? 1.0 : -1.0;
    const Span righting{span.to, span.to + (RIGHTING.to - RIGHTING.from)};
    if (t < span.to) {
        return lerp(from, goal + side * RIGHTING_WAY, progress(span, t, marked ? 0 : 3));
    }
    return t < righting.to ? goal + side * RIGHTING_WAY * (1 - progress(righting, t, 0)) : goal;
}

Point Figure::inPhrase(double t, Point goal, bool entrance, int order) const
{
    t -= STAGGER * order;
    const double x = across(t, goal.x, ARC);
    if (entrance) {
        const double y = lerp(at.y, goal.y, progress(RISE, t, marked ? 0 : 4));
        return {static_cast<float>(x), static_cast<float>(y)};
    }
    const double arc = progress(ARC, t, marked ? 0 : 3);
    // The height of the arc grows with the distance.
    const double swing = marked ? 0 : 0.22 * std::abs(goal.x - at.x) * 4 * arc * (1 - arc);
    const double y = at.y + STROKE_HEIGHT * progress(STROKE, t, 0) +
                     (goal.y + SINK_DEPTH - at.y - STROKE_HEIGHT) * arc + swing -
                     SINK_DEPTH * progress(SINK, t, 0);
    return {static_cast<float>(x), static_cast<float>(y)};
}

Point Figure::inCoda(double t) const
{
    const Point home = homeOf(number);
    t -= STAGGER * number;
    return {static_cast<float>(across(t, home.x, CROSSING_HOME)),
            static_cast<float>(lerp(at.y, home.y, progress(GOING_HOME, t, marked ? 0 : 8)))};
}

/// The places of a phrase; every other verse is danced as in a mirror.
Point placeOf(const Cue& cue, std::size_t figure)
{
    const bool mirrored = cue.verse % 2 == 1;
    const Point p = cue.phrase->places[mirrored ? FIGURES - 1 - figure : figure];
    return mirrored ? Point{1 - p.x, p.y} : p;
}

/// A dance for a piece in which there is no time for one: up to the places of its phrase, or as far
/// towards them as the time allows, and home.
std::vector<Pose> shortDance(const Score& score)
{
    // Between two stations a figure is up to half as fast again as on average.
    constexpr double FASTEST = 0.0088 * Rates::UPDATES / 1.5;
    constexpr Span RISING{0.10, 0.45};
    constexpr Span SINKING{0.52, 0.87};
    Stations stations;
    for (std::size_t k = 0; k < FIGURES; ++k) {
        const Point home = homeOf(static_cast<int>(k));
        const Point way = placeOf(score.cues.front(), k) - home;
        const double reach = FASTEST * (RISING.to - RISING.from) * score.seconds;
        const double part = std::min(1.0, reach / static_cast<double>(length(way)));
        const Point top = home + way * static_cast<float>(part);
        stations[k] = {{RISING.from * score.seconds, home},
                       {RISING.to * score.seconds, top},
                       {SINKING.from * score.seconds, top},
                       {SINKING.to * score.seconds, home}};
    }
    return posesThrough(stations, score.seconds);
}

} // namespace

std::vector<Pose> choreograph(const Score& score, bool marked)
{
    if (score.edges < 1) {
        return shortDance(score);
    }
    std::array<Figure, FIGURES> figures = {Figure(0, marked), Figure(1, marked), Figure(2, marked)};
    std::vector<Pose> poses;
    std::size_t cue = 0; // the phrase that is being danced, or comes next
    const std::size_t count = recordsOf(score.seconds);
    for (std::size_t i = 0; i < count; ++i) {
        const double now = static_cast<double>(i) / Rates::RECORDS;
        if (cue < score.cues.size() && now >= score.cues[cue].start + PHRASE) {
            for (std::size_t k = 0; k < FIGURES; ++k) {
                figures[k].arrive(placeOf(score.cues[cue], k));
            }
            ++cue;
        }
        Pose pose;
        for (std::size_t k = 0; k < FIGURES; ++k) {
            if (cue < score.cues.size()) {
                const Cue& danced = score.cues[cue];
                const int leader = static_cast<int>(cue) % FIGURES;
                const int order = (static_cast<int>(k) + FIGURES - leader) % FIGURES;
                pose[k] =
                    figures[k].inPhrase(now - danced.start, placeOf(danced, k), cue == 0, order);
            } else {
                pose[k] = figures[k].inCoda(now - score.coda);
            }
        }
        poses.push_back(pose);
    }
    return poses;
}

} // namespace media
