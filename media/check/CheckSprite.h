#pragma once

#include "CheckReport.h"
#include "Sprite.h"
#include "WaterColor.h"

#include <vector>

namespace media {

/// Remarks on a sprite as it will be seen: drawn small, at half opacity, over the water.
/// \param water  of all its parts; empty = not known
void checkSprite(const Sprite& sprite, const std::vector<WaterColor>& water, FileReport& report);

/// Remarks on a fish that does not head towards the top of the picture.
void checkHeading(const Sprite& sprite, FileReport& report);

} // namespace media
