#pragma once

#include "File.h"

namespace media {

/// Makes data/fish0.png, the sprite of every fish: 64 x 64, with alpha.
std::vector<File> makeFish(const Request& request);

} // namespace media
