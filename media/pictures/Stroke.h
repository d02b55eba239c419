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
    float across;   ///< -1 at the edge to the left of the walker along the stroke .. 1 at the right
};

/// A brush stroke: a bent line whose width changes on the way. Leaves, stems, stones and tentacles
/// are all strokes; what they look like is up to the loop that shades the touched pixels.
class Stroke {
public:
    /// Leads the stroke on to \p at. Both in pixels; y points down.
    void add(Point at, float halfWidth) { joints.push_back({at, halfWidth}); }

    /// The covered pixels of a canvas of the given size, each of them once, with an edge that is
    /// smooth over \p softness pixels.
    std::vector<Touch> touch(int width, int height, float softness = 1) const;

private:
    struct Joint {
        Point at;
        float halfWidth;
    };
    std::vector<Joint> joints;
};

} // namespace media
