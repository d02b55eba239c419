#pragma once

#include "Canvas.h"
#include "Sound.h"

#include <string>

namespace media {

/// The bytes of an image or sound file. The same input gives the same bytes: no time stamps, no
/// random serial numbers. Each throws std::runtime_error when the library refuses.

/// A JPEG with full colour resolution (4:4:4). \param image  3 channels \param quality  1..100
std::string encodeJpeg(const Bitmap& image, int quality);

/// A PNG of 8 bits a channel, colour type 2 (3 channels) or 6 (4 channels).
std::string encodePng(const Bitmap& image);

/// An Ogg Vorbis stream of two channels.
/// \param quality  -0.1 .. 1
/// \param serial   the number of the logical stream
std::string encodeVorbis(const Sound& sound, float quality, int serial);

} // namespace media
