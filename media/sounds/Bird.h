#pragma once

#include "Random.h"
#include "Sound.h"

namespace media {

/// Adds the bird's answer to a sound: a short warble of fluted chirps that ends in a trill.
/// \param start  seconds
/// \param pan    0 = left .. 1 = right
/// \param level  of the loudest chirp
void warble(Sound& sound, double start, float pan, float level, Random& random);

} // namespace media
