#pragma once

#include "Canvas.h"
#include "Light.h"
#include "Random.h"

namespace media {

/// Paints the sand dunes onto the lower part of the picture, far ones first, with ripples and
/// caustics.
void paintDunes(Canvas& canvas, const Light& light, std::uint32_t seed);

/// Puts heaps of stones on the sand to the left and to the right.
void paintStones(Canvas& canvas, const Light& light, Random random);

} // namespace media
