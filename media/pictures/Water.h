#pragma once

#include "File.h"

namespace media {

/// Makes data/underwater.jpg, the picture behind everything.
std::vector<File> makeWater(const Request& request);

} // namespace media
