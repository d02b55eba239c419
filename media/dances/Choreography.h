#pragma once

#include "Score.h"

#include <vector>

namespace media {

/// Where the figures are at one moment, in the scene's world: x to the right, y up, the picture is
/// 0 .. 1.
using Pose = std::array<Point, FIGURES>;

/// Where a figure waits below the picture before and after the dance: the place that the scene
/// gives to a sensor whose recorded position is (0, 0, 0).
/// \param figure  0, 1 or 2, from the right to the left
Point homeOf(int figure);

/// The paths of the figures, Rates::RECORDS * seconds + 1 poses from the first moment of the
/// voice to its last. They are smooth (no jump in place or speed), start and end at home, and
/// follow the phrases: a stroke upward as a phrase begins, a slow arc on the held vowel, then the
/// figure rights itself and sinks in the rest.
/// \param marked  as in a rehearsal: the same places at the same times, but the arcs are flat and
/// the
///                speed does not pulse
std::vector<Pose> choreograph(const Score& score, bool marked);

} // namespace media
