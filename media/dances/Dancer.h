#pragma once

#include "Point.h"
#include "VisibleWorld.h"

#include <vector>

namespace media {

/// A beat of a figure's bell.
struct Beat {
    double start;    ///< seconds since the phrase began
    double strength; ///< of its push, in comparison with the other beats of the phrase
};

/// A place or a way in the world, or a speed in its units a second.
struct Vector {
    double x = 0;
    double y = 0;
};

/// How a figure moves: like a jellyfish. A beat pushes it, water slows it down, and its weight
/// pulls at it, so that it glides between beats and sinks in rests. The path is smooth: a push
/// swells up and dies away.
///
/// Goes on by a record at a time, Rates::RECORDS of them a second.
class Dancer {
public:
    /// At rest, and without weight until its first phrase.
    explicit Dancer(Point place) : here{static_cast<double>(place.x), static_cast<double>(place.y)}
    {
    }

    Point place() const { return {static_cast<float>(here.x), static_cast<float>(here.y)}; }

    /// Starts a phrase: chooses the pushes that bring the figure to \p goal or close to it, or as
    /// far towards it as TOP_SPEED allows. Of all ways that stay on the stage it takes one on which
    /// the figure does not linger.
    /// \param beats    at least one
    /// \param seconds  until it is there
    /// \param aside    so far to any side of its goal it may arrive, for the sake of a lively way
    void begin(const std::vector<Beat>& beats, Point goal, double seconds, const Region& stage,
               double aside);

    /// Starts to leave: from its present speed it turns straight up, in TURNING, to \p up a second.
    void leave(double up);

    /// Goes on by one record.
    void advance();

    /// The highest speed of a dance. An update of the scene passes over three records at the most:
    /// the figure moves by less than 0.012 in it, more makes its tentacles long and jagged.
    static constexpr double TOP_SPEED = 0.345;

    /// How long a figure takes to turn upwards as it leaves, in seconds.
    static constexpr double TURNING = 0.35;

private:
    /// The push of a beat.
    struct Push {
        double start;
        Vector speed; ///< that it gives
    };

    class Plan;

    void step();

    Vector here;
    Vector speed;
    double clock = 0;        ///< since the phrase began
    double weight = 0;       ///< 1 = dances
    double leavingSpeed = 0; ///< 0 = dances
    Vector speedBefore;      ///< as it began to leave
    std::vector<Push> pushes;
    std::vector<Point> past; ///< notes of the last two seconds
    int records = 0;         ///< since the last note
};

} // namespace media
