#pragma once

#include "CheckReport.h"

namespace media {

/// Checks data/underwater.jpg of a media folder.
FileReport checkWater(const std::filesystem::path& folder);

/// Checks data/fish0.png and data/bubble.png.
FileReport checkFish(const std::filesystem::path& folder);
FileReport checkBubble(const std::filesystem::path& folder);

} // namespace media
