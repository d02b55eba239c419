#pragma once

namespace record {

/// What a film's view is, as operations on the transform of the scene's root. Each transform is a
/// matrix of 16 floats in column-major order; that of a root holds a scale in x and y and a
/// translation, as mouse and wheel leave it.
namespace View {

/// Sets the zoom factor; what is in the middle of the picture stays there. Sets elements 0 and 5 to
/// \p factor and multiplies 12 and 13 by the ratio of \p factor to element 0. A ratio that the
/// translation cannot bear, so that it would not be finite, leaves the transform as it was.
/// \param factor  above 0; 1 = unzoomed
/// \return whether the transform was set
bool zoom(float* root, float factor);

/// Puts a place of the water into the middle of the picture, at the root's zoom factor, however the
/// scene is turned. Sets elements 12 and 13.
/// \param pivot,water  transforms below the root, the pivot's a rotation
/// \param x,y          the place in the water's frame: the unit square, (0, 0) at the bottom left
void center(float* root, const float* pivot, const float* water, float x, float y);

} // namespace View

} // namespace record
