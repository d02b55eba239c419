#pragma once

#include "Canvas.h"
#include "Light.h"
#include "Random.h"

namespace media {

/// Plants corals, sponges and sea grass among the stones in front.
void paintReef(Canvas& canvas, const Light& light, Random random);

} // namespace media
