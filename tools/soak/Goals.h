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

/// The hour of the scene from which growth counts: hour 2, or the middle of a run shorter than
/// four hours.
/// \param hours  that the run lasts
double settledAt(double hours);

/// Judges a run by its samples, in the order of time. The start is the first sample that is not
/// before settledAt.
/// - The heap grows by at most 512 KiB from the start to the end.
/// - There are as many display lists at each sample as the living nodes account for.
/// - There are as many textures at the end as at the start.
/// A run without samples, or whose start is its end, meets no goal: there is no span to judge.
std::vector<Goal> judge(const std::vector<Sample>& samples);

} // namespace soak
