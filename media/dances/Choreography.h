#pragma once

#include "Poses.h"
#include "VisibleWorld.h"

namespace media {

/// The paths of the figures, recordsOf(seconds) poses from the first moment of the voice to its
/// last. They start at home and beat as the notes of the leading voice begin: all figures on the
/// first note of a phrase, the leader of the phrase on all its notes, the others on some. In rests
/// they glide and sink.
///
/// In the coda they come together and rise, and in the last breath of the voice they leave through
/// the top of the picture, faster than a fish can swim: fish that followed them down to their
/// places of rest would be lost. Unseen, above the picture, they go home from one record to the
/// next.
///
/// In a piece that is too short for a whole prelude and coda they come up and leave.
/// \param view  the part of the world that is seen; between entrance and exit they dance in it
std::vector<Pose> choreograph(const Score& score, const Region& view);

/// The same places at the same times as in a rehearsal: straight lines from place to place.
std::vector<Pose> rehearse(const Score& score, const Region& view);

} // namespace media
