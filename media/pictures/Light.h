#pragma once

#include "Color.h"

#include <cstdint>

namespace media {

/// Where the underwater picture ends on both sides. In points of the picture, whose y goes from 0
/// at its top to 1 at its bottom; a picture that is wider than high begins left of 0.
struct Sides {
    float left = 0;
    float right = 1;

    float width() const { return right - left; }

    /// \param share  0 = the left side, 1 = the right one
    float at(float share) const { return mix(left, right, share); }
};

/// The light of the underwater picture. Points are of the picture; the sun stands above it, left of
/// its middle.
class Light {
public:
    Light(std::uint32_t chosen, Sides between);

    Sides sides() const { return ends; }

    /// The open water: blue below, aqua toward the sun. Opaque.
    Color water(Point p) const;

    /// How strongly the shafts of sunlight pass through a point, 0 .. 1.
    float shafts(Point p) const;

    /// The color of the shafts at a point, to be added: almost white below the surface. Alpha is 0.
    static Color shaftColor(Point p);

    /// How much sunlight a thing at a point catches, 0 (in the deep) .. 1 (at the surface).
    float sunlight(Point p) const;

    /// How close a point is to being below the sun, 0 .. 1.
    float belowSun(Point p) const;

    /// The glitter of the waves seen from below, to be added to the water; alpha is 0.
    Color surface(Point p) const;

private:
    std::uint32_t seed;
    Sides ends;
    Point sun;
};

} // namespace media
