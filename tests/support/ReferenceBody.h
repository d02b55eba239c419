#pragma once

#include "ReferenceMath.h"

#include <vector>

/// The body of a sensor figure: 240 frames of 6 deformed spheres each.
namespace reference {

constexpr int BODY_FRAMES = 240;
constexpr int BODY_SEGMENTS = 6;

/// Row i (0..16, from the top) and column j (0..16, once around) of the unit sphere.
Triple spherePoint(int i, int j);

/// A point of the unit sphere, deformed for one frame.
Triple bodyPoint(const Triple& onSphere, int frame);

/// Where one segment of a frame is drawn: moved along y, then scaled.
struct Segment {
    Single shift;
    Triple scale;
};
Segment bodySegment(int frame, int segment);

/// The quads of one segment of a frame, four corners each, in the order in which they are drawn,
/// in the segment's own frame.
std::vector<std::array<Triple, 4>> bodyQuads(int frame);

} // namespace reference
