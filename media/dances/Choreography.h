#pragma once

#include "Poses.h"

namespace media {

/// The paths of the figures, recordsOf(seconds) poses from the first moment of the voice to its
/// last. They are smooth (no jump in place or speed), start and end at home, and
/// follow the phrases: a stroke upward as a phrase begins, a slow arc on the held vowel, then the
/// figure rights itself and sinks in the rest.
/// In a piece that is too short for a whole prelude and coda they only come up and go home.
/// \param marked  as in a rehearsal: the same places at the same times, but the arcs are flat and
///                the speed does not pulse
std::vector<Pose> choreograph(const Score& score, bool marked);

} // namespace media
