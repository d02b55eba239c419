#pragma once

#include "Color.h"

#include <cstdint>

namespace media {

/// The light of the underwater picture. Points are of the unit square, y down; the sun stands
/// above the picture, left of its middle.
class Light {
public:
    explicit Light(std::uint32_t chosen) : seed(chosen) {}

    /// The open water: deep blue below, aqua toward the sun. Opaque.
    Color water(Point p) const;

    /// How strongly the shafts of sunlight pass through a point, 0 .. 1.
    float shafts(Point p) const;

    /// How much sunlight a thing at a point catches, 0 (in the deep) .. 1 (at the surface).
    float sunlight(Point p) const;

    /// The glitter of the waves seen from below, to be added to the water; alpha is 0.
    Color surface(Point p) const;

    /// The color of the shafts, to be added; alpha is 0.
    static Color shaftColor() { return {0.06f, 0.80f, 0.72f, 0}; }

private:
    std::uint32_t seed;
};

} // namespace media
