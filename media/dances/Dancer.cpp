#include "Dancer.h"

#include "Rates.h"

#include <numbers>

namespace media {

namespace {

constexpr double RECORD = 1.0 / Rates::RECORDS;

/// Speed falls to a third in this time.
constexpr double GLIDE = 0.85; // seconds

/// The speed of a figure that sinks for long.
constexpr double SINKING = 0.16; // a second

/// A push swells up and dies away within this time.
constexpr double PUSH = 0.34; // seconds

/// A figure notes every so many records where it is, and remembers the notes of two seconds.
constexpr int NOTED = 6;
constexpr std::size_t REMEMBERED = 2 * Rates::RECORDS / NOTED;

/// A figure that always comes so far within two seconds is lively enough.
constexpr double LIVELY = .12;

/// How a way is swum.
struct Manner {
    double bend;   ///< the first push goes so far to the left of the way and the last one as far to
                   ///< the right, radians: the figure swims an arc
    double growth; ///< factor of the strength from push to push
};

/// The arcs that are tried: so many to each side, up to the roundest.
constexpr int BENDS = 16;
constexpr double ROUNDEST = 2.2;

constexpr double GROWTHS[] = {1.0, 0.7, 1.4, 0.5, 2.0, 0.36, 2.8, 0.2, 4.0};

/// To which sides of its goal a figure may arrive.
constexpr Vector SIDES[] = {{0, 0}, {1, 0},   {-1, 0}, {0, 1}, {0, -1},
                            {1, 1}, {-1, -1}, {1, -1}, {-1, 1}};

/// A way that is too far is shortened in such steps.
constexpr double LESS = 0.1;

Vector operator+(Vector a, Vector b)
{
    return {a.x + b.x, a.y + b.y};
}

Vector operator-(Vector a, Vector b)
{
    return {a.x - b.x, a.y - b.y};
}

Vector operator*(Vector a, double k)
{
    return {a.x * k, a.y * k};
}

/// As of complex numbers: turns and scales.
Vector product(Vector a, Vector b)
{
    return {a.x * b.x - a.y * b.y, a.x * b.y + a.y * b.x};
}

Vector quotient(Vector a, Vector b)
{
    return product(a, {b.x, -b.y}) * (1 / (b.x * b.x + b.y * b.y));
}

/// The force of a push of strength 1 at a time after its start. Its integral is 1.
double force(double t)
{
    if (t <= 0 || t >= PUSH) {
        return 0;
    }
    return (1 - std::cos(2 * std::numbers::pi * t / PUSH)) / PUSH;
}

/// How far a figure always comes within two seconds: the least of the distances between each place
/// and the farthest one in the time after it, but no more than LIVELY.
double livelinessOf(const std::vector<Point>& notes)
{
    double least = LIVELY;
    for (std::size_t i = 0; i + REMEMBERED < notes.size(); ++i) {
        float farthest = 0;
        for (std::size_t j = i + 1; j <= i + REMEMBERED; ++j) {
            const Point way = notes[j] - notes[i];
            farthest = std::max(farthest, dot(way, way));
        }
        least = std::min(least, std::sqrt(static_cast<double>(farthest)));
    }
    return least;
}

} // namespace

/// The ways that a figure can take in a phrase. The motion is linear in the pushes: it is that
/// without a push, and for each push that of a figure at rest, times the speed that the push gives.
/// All are computed once, at each note.
class Dancer::Plan {
public:
    Plan(const Dancer& dancer, const std::vector<Beat>& in, double seconds, const Region& on)
        : beats(in), stage(on), notes(dancer.past), remembered(dancer.past.size())
    {
        Dancer drifting(dancer);
        drifting.pushes.clear();
        drift = courseOf(drifting, seconds);
        for (const Beat& beat : beats) {
            Dancer pushed({0, 0});
            pushed.pushes = {{beat.start, {1, 0}}};
            units.push_back(courseOf(pushed, seconds));
        }
        // A figure that rises onto the stage comes from below it, and sinks before its first beat.
        constexpr float DEEPER = 0.02f;
        stage.bottom = std::min(stage.bottom, dancer.place().y - DEEPER);
    }

    /// The pushes that lead to a goal.
    std::vector<Push> pushesTo(Vector goal, Manner manner) const
    {
        std::vector<Push> pushes;
        Vector carried;
        const double last = static_cast<double>(beats.size()) - 1;
        double strength = 1;
        for (std::size_t i = 0; i < beats.size(); ++i) {
            const double part = last > 0 ? static_cast<double>(i) / last : 0.5;
            const double angle = manner.bend * (1 - 2 * part);
            const Vector push =
                Vector{std::cos(angle), std::sin(angle)} * (strength * beats[i].strength);
            carried = carried + push * units[i].places.back().x;
            pushes.push_back({beats[i].start, push});
            strength *= manner.growth;
        }
        const Vector fit = quotient(goal - drift.places.back(), carried);
        for (Push& push : pushes) {
            push.speed = product(push.speed, fit);
        }
        return pushes;
    }

    /// Where these pushes lead.
    Vector end(const std::vector<Push>& pushes) const
    {
        Vector place = drift.places.back();
        for (std::size_t k = 0; k < pushes.size(); ++k) {
            place = place + pushes[k].speed * units[k].places.back().x;
        }
        return place;
    }

    /// The highest speed with these pushes.
    double highestSpeed(const std::vector<Push>& pushes) const
    {
        double highest = 0;
        for (std::size_t i = 0; i < drift.speeds.size(); ++i) {
            Vector now = drift.speeds[i];
            for (std::size_t k = 0; k < pushes.size(); ++k) {
                now = now + pushes[k].speed * units[k].speeds[i].x;
            }
            highest = std::max(highest, now.x * now.x + now.y * now.y);
        }
        return std::sqrt(highest);
    }

    /// How lively the way with these pushes is. 0 when it leads off the stage.
    double liveliness(const std::vector<Push>& pushes)
    {
        notes.resize(remembered);
        for (std::size_t i = 0; i < drift.places.size(); ++i) {
            Vector now = drift.places[i];
            for (std::size_t k = 0; k < pushes.size(); ++k) {
                now = now + pushes[k].speed * units[k].places[i].x;
            }
            const Point place{static_cast<float>(now.x), static_cast<float>(now.y)};
            if (place.x < stage.left || place.x > stage.right || place.y < stage.bottom ||
                place.y > stage.top) {
                return 0;
            }
            notes.push_back(place);
        }
        return livelinessOf(notes);
    }

private:
    /// Where a figure is and how fast it is, at each note.
    struct Course {
        std::vector<Vector> places;
        std::vector<Vector> speeds;
    };

    static Course courseOf(Dancer& dancer, double seconds)
    {
        Course course;
        const auto records = static_cast<int>(seconds * Rates::RECORDS);
        for (int i = 1; i <= records; ++i) {
            dancer.step();
            if (i % NOTED == 0 || i == records) {
                course.places.push_back(dancer.here);
                course.speeds.push_back(dancer.speed);
            }
        }
        return course;
    }

    const std::vector<Beat>& beats;
    Region stage;
    Course drift;
    std::vector<Course> units;
    std::vector<Point> notes;
    std::size_t remembered; ///< of the notes, those before the phrase
};

void Dancer::step()
{
    Vector acceleration = (speed + Vector{0, weight * SINKING}) * (-1 / GLIDE);
    for (const Push& push : pushes) {
        acceleration = acceleration + push.speed * force(clock - push.start);
    }
    speed = speed + acceleration * RECORD;
    here = here + speed * RECORD;
    clock += RECORD;
}

void Dancer::begin(const std::vector<Beat>& beats, Point goal, double seconds, const Region& stage,
                   double aside)
{
    clock = 0;
    weight = 1;
    Plan plan(*this, beats, seconds, stage);
    const Vector end{static_cast<double>(goal.x), static_cast<double>(goal.y)};
    const Vector down = plan.end({});
    double highest = 0;
    pushes.clear();
    // The whole way may be too far for the time: then a part of it.
    for (double part = 1; part > 0 && highest < LIVELY; part -= LESS) {
        for (const Vector& side : SIDES) {
            const Vector goal = down + (end + side * aside - down) * part;
            for (const double growth : GROWTHS) {
                for (int bend = -BENDS; bend <= BENDS; ++bend) {
                    const std::vector<Push> way =
                        plan.pushesTo(goal, {ROUNDEST * bend / BENDS, growth});
                    const double found =
                        plan.highestSpeed(way) <= TOP_SPEED ? plan.liveliness(way) : 0;
                    if (found > highest) {
                        highest = found;
                        pushes = way;
                    }
                }
            }
            if (highest >= LIVELY) {
                break;
            }
        }
    }
}

void Dancer::leave(double up)
{
    clock = 0;
    leavingSpeed = up;
    speedBefore = speed;
}

void Dancer::advance()
{
    if (leavingSpeed > 0) {
        const double part = std::min(1.0, clock / TURNING);
        const double turned = part * part * (3 - 2 * part);
        speed = speedBefore + (Vector{0, leavingSpeed} - speedBefore) * turned;
        here = here + speed * RECORD;
        clock += RECORD;
        return;
    }
    step();
    if (++records == NOTED) {
        records = 0;
        past.push_back(place());
        if (past.size() > REMEMBERED) {
            past.erase(past.begin());
        }
    }
}

} // namespace media
