#pragma once

#include "CheckReport.h"
#include "Sprite.h"
#include "WaterColor.h"

#include <vector>

namespace media {

/// Remarks on a sprite that can hardly be told from parts of the water, as the scene shows both.
/// \param water  of all its parts; empty = not known
void checkContrast(const Sprite& sprite, const std::vector<WaterColor>& water, FileReport& report);

/// How far apart two colors are to the eye: their distance in CIE 1976 L*a*b*, 0 for the same, 100
/// from black to white. \param one, other  sRGB (IEC 61966-2-1), 0 .. 255
float colorDifference(const WaterColor& one, const WaterColor& other);

} // namespace media
