#pragma once

#include "Canvas.h"

#include <string>

namespace media {

/// The bytes of an image file. The same input gives the same bytes: no time stamps. Both throw
/// std::runtime_error when the library refuses.

/// A JPEG with full color resolution (4:4:4). \param image  3 channels \param quality  1..100
std::string encodeJpeg(const Bitmap& image, int quality);

/// A PNG of 8 bits a channel, color type 2 (3 channels) or 6 (4 channels).
std::string encodePng(const Bitmap& image);

} // namespace media
