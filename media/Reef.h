#pragma once

#include "Canvas.h"
#include "Light.h"
#include "Random.h"

namespace media {

/// Paints the rocks that stand far off in the haze at both sides.
void paintCliffs(Canvas& canvas, const Light& light, std::uint32_t seed);

/// Plants corals, sponges and sea grass among the stones in front.
void paintReef(Canvas& canvas, const Light& light, Random random);

} // namespace media
