#pragma once

#include "Canvas.h"

#include <vector>

namespace media {

/// A pixel that a stroke covers, and where on the stroke it lies.
struct Touch {
    int x;
    int y;
    float coverage; ///< how much of the pixel is covered, 0 .. 1
    float along;    ///< 0 at the stroke's first point .. 1 at its last
    float across;   ///< -1 at the left edge, looking along the stroke, .. 1 at the right edge
};

/// A brush stroke: a polyline of varying width. Leaves, stems and tentacles are strokes. The caller
/// shades the pixels that touch returns.
class Stroke {
public:
    /// Appends a point and half the width there. Both in pixels; y points down.
    void add(Point at, float halfWidth) { joints.push_back({at, halfWidth}); }

    /// The covered pixels of a canvas of the given size, each of them once. A stroke of fewer than
    /// two points covers none. \param softness  width of the edge over which coverage falls from 1
    /// to 0, pixels
    std::vector<Touch> touch(int width, int height, float softness = 1) const;

private:
    struct Joint {
        Point at;
        float halfWidth;
    };
    std::vector<Joint> joints;
};

} // namespace media
