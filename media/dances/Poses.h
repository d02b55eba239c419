#pragma once

#include "Point.h"
#include "Score.h"

#include <array>
#include <vector>

namespace media {

/// Where the figures are at one moment, in the scene's world: x to the right, y up, the picture is
/// 0 .. 1.
using Pose = std::array<Point, FIGURES>;

/// Where a figure waits below the picture before and after the dance: the place that the scene
/// gives to a sensor whose recorded position is (0, 0, 0).
/// \param figure  0, 1 or 2, from the right to the left
Point homeOf(int figure);

/// The poses of a recording, Rates::RECORDS a second, from the first moment of a voice to its last.
std::size_t recordsOf(double seconds);

/// Where a figure is at a certain time.
struct Station {
    double seconds;
    Point place; ///< in the scene's world
};

/// The stations of each figure, in the order of time.
using Stations = std::array<std::vector<Station>, FIGURES>;

/// The time of the last station; 0 when there is none.
double endOf(const Stations& stations);

/// The paths of figures that go from station to station in straight lines, and start and arrive
/// softly. At the start they are at home, after their last station they stay there. A figure that
/// has left through the top waits there, and is below the picture from one pose to the next.
/// \return recordsOf(seconds) poses
std::vector<Pose> posesThrough(const Stations& stations, double seconds);

} // namespace media
