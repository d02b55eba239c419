#pragma once

#include "Sample.h"

#include <string>
#include <vector>

namespace soak {

/// A goal of a long run, and whether the run has met it.
struct Goal {
    std::string text; ///< what was asked for, and what came out
    bool met;
};

/// Judges a run by its samples, in the order of time:
/// - the heap grows by at most 512 KiB from the start, hour 2 of the scene or the middle of a run
///   shorter than four hours, to the end;
/// - there are as many display lists at each sample as the living nodes account for;
/// - there are as many textures at the end as at the start.
/// No goal is met by a run without samples.
std::vector<Goal> judge(const std::vector<Sample>& samples);

} // namespace soak
