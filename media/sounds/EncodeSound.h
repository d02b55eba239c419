#pragma once

#include "Sound.h"

#include <string>

namespace media {

/// The bytes of an Ogg Vorbis stream of two channels. The same input gives the same bytes: no
/// random serial numbers. Throws std::runtime_error when the library refuses. \param quality  -0.1
/// .. 1 \param serial   the number of the logical stream
std::string encodeVorbis(const Sound& sound, float quality, int serial);

} // namespace media
