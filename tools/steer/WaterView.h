#pragma once

#include "Place.h"

#include <array>
#include <optional>

/// Where the places of the water are seen in the picture, and back. Places of the picture are 0..1
/// from left to right and from bottom to top.
class WaterView {
public:
    /// The view of the scene's camera (Camera: 60 degrees vertically, from z = 1).
    /// \param root,pivot,water  float[16] each, column-major: the transforms from the eye's frame
    ///                          down to the water's
    /// \param aspect            width of the picture by its height
    /// \param scale             how much larger the picture is than the camera's
    WaterView(const float* root, const float* pivot, const float* water, double aspect,
              double scale = 1);

    /// The place of the water that is seen there: where the line of sight meets the water's plane.
    /// One beside the water becomes the nearest one in it, each coordinate by itself.
    /// \return none where the plane is seen edge-on, or behind the eye
    std::optional<Place> placeAt(double x, double y) const;

    /// Where a place is seen, which may be outside of the picture.
    /// \return none when it is behind the eye
    std::optional<Place> pictureOf(Place place) const;

private:
    using Row = std::array<double, 3>; ///< times (x, y, 1) of a place
    Row across{};                      ///< -depth..depth over the width of the picture
    Row upward{};                      ///< the same over its height
    Row depth{};                       ///< distance from the eye's plane
};
