#pragma once

#include "Canvas.h"
#include "Light.h"

namespace media {

/// Paints the rocks that stand far off in the haze at both sides of the picture.
void paintCliffs(Canvas& canvas, const Light& light, std::uint32_t seed);

} // namespace media
