#pragma once

#include "Canvas.h"
#include "Light.h"
#include "Random.h"

namespace media {

/// One of the kelp forests that stand behind each other at both sides of the picture.
struct KelpForest {
    int plants;      ///< on each side of a picture as wide as high
    float reach;     ///< how far it grows from the side into the picture, 0 .. 0.5 of the width
    float leaf;      ///< length of a blade, in picture heights
    float root;      ///< y of the roots
    float top;       ///< y of the tallest tips
    float haze;      ///< 0 = near, 1 = has the color of the water
    float deviation; ///< of the blur, in picture heights
};

/// Paints a forest of giant kelp onto a transparent canvas. Its stems are curved, with floats and
/// blades on alternate sides. No blade reaches beyond the sides of the picture.
void paintKelp(Canvas& canvas, const KelpForest& forest, const Light& light, Random random);

} // namespace media
