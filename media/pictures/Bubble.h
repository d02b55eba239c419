#pragma once

#include "File.h"

namespace media {

/// Makes data/bubble.png, the sprite of every bubble: 64 x 64, with alpha.
std::vector<File> makeBubble(const Request& request);

} // namespace media
