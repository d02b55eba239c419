#pragma once

#include "Canvas.h"
#include "Light.h"
#include "Random.h"

namespace media {

/// One of the kelp forests that stand behind each other at both sides of the picture.
struct KelpForest {
    int plants;      ///< on each side
    float reach;     ///< how far it grows from the side into the picture, 0 .. 0.5
    float leaf;      ///< length of a blade, in picture widths
    float root;      ///< y of the roots
    float top;       ///< y of the tallest tips
    float haze;      ///< 0 = near, 1 = has the color of the water
    float deviation; ///< of the blur, in picture widths
};

/// Paints a forest of giant kelp on a transparent canvas of \p size x \p size pixels. Its stems are
/// curved, with floats and blades on alternate sides.
Canvas paintKelp(const KelpForest& forest, const Light& light, int size, Random random);

} // namespace media
