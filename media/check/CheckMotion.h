#pragma once

#include "CheckReport.h"
#include "Point.h"

#include <vector>

namespace media {

/// How a figure is moved by a recording.
struct Motion {
    int figure;              ///< 0, 1 or 2
    std::vector<Point> path; ///< recorded positions, one entry a record
    std::size_t steps;       ///< records that the scene's clock counts, at least 1
    double seconds;          ///< the length of the voice
};

/// Remarks on a path on which a figure does not look right.
void checkMotion(const Motion& motion, FileReport& report);

} // namespace media
