#pragma once

#include "CheckReport.h"
#include "WaterColor.h"

#include <vector>

namespace media {

/// What there is to say of the water, and its colors: the sprites are seen in front of it.
struct WaterCheck {
    FileReport report;
    std::vector<WaterColor> colors; ///< part by part; empty when they cannot be known
};

/// Checks data/underwater.jpg of a media folder.
WaterCheck checkWater(const std::filesystem::path& folder);

/// Checks data/fish0.png and data/bubble.png.
/// \param water  the colors that checkWater has found
FileReport checkFish(const std::filesystem::path& folder, const std::vector<WaterColor>& water);
FileReport checkBubble(const std::filesystem::path& folder, const std::vector<WaterColor>& water);

} // namespace media
