#pragma once

#include "CheckReport.h"
#include "Sprite.h"

#include <array>
#include <vector>

namespace media {

/// The mean color of a part of the water, red, green and blue of 0 .. 255, as the scene shows it.
using WaterColor = std::array<float, 3>;

/// Remarks on a sprite as it will be seen: drawn small, at half opacity, over the water.
/// \param water  of all its parts; empty = not known
void checkSprite(const Sprite& sprite, const std::vector<WaterColor>& water, FileReport& report);

/// Remarks on a fish that does not head towards the top of the picture.
void checkHeading(const Sprite& sprite, FileReport& report);

} // namespace media
