#pragma once

#include "File.h"

namespace media {

/// Makes data/squid.png, the creature's picture: 256 x 256, with alpha.
std::vector<File> makeSquid(const Request& request);

} // namespace media
