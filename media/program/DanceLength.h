#pragma once

#include "Options.h"

namespace media {

/// The length of what is made, in seconds. Where --seconds does not say it, a dance that is made
/// alone is as long as the voice in its folder; where there is none, as long as its table.
///
/// Throws std::runtime_error, with a line for the user, when a voice is there that cannot be
/// played, when the length is none that a dance can have, and as readPoseTable does.
double lengthFor(const Options& options);

} // namespace media
