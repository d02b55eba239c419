#pragma once

#include "Point.h"

#include <cstdint>

namespace media {

/// 32 well-mixed bits for a cell of the integer grid.
constexpr std::uint32_t hash(int x, int y, std::uint32_t seed)
{
    std::uint32_t h = static_cast<std::uint32_t>(x) * 0x8DA6B343u ^
                      static_cast<std::uint32_t>(y) * 0xD8163841u ^ seed * 0xCB1AB31Fu;
    h = (h ^ (h >> 16)) * 0x7FEB352Du;
    h = (h ^ (h >> 15)) * 0x846CA68Bu;
    return h ^ (h >> 16);
}

/// Value noise: a random number 0 .. 1 in each corner of the integer grid, blended smoothly in
/// between. Features are about one unit wide; scale the point to make them larger or smaller.
float noise(Point p, std::uint32_t seed);

/// The same along a line.
float noise(float x, std::uint32_t seed);

/// A sum of \p octaves noises, each twice as fine and half as strong as the one before, 0 .. 1.
float fractal(Point p, int octaves, std::uint32_t seed);

/// Worley's cellular noise: each cell of the grid has one random point.
struct Cells {
    float nearest;    ///< distance to the nearest point
    float second;     ///< distance to the second nearest
    std::uint32_t id; ///< a hash of the nearest point's cell
};
Cells cells(Point p, std::uint32_t seed);

/// Caustics, the net of light that waves cast into the water: 0 in the meshes, 1 on the lines.
/// \param time  selects a moment of the moving water
float caustics(Point p, float time, std::uint32_t seed);

} // namespace media
