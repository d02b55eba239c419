#pragma once

#include "WallLayout.h"

#include <vector>

/// The ramps of tiles that overlap, as numbers. Each place that several tiles light gets shares of
/// its light that add up to 1.
///
/// A ramp is an S: half of it the parabola 2 u^2, half the same turned around, u from 0 at the edge
/// of the tile to 1 at the ramp's end. Its slope has no step, which the eye would see as a line
/// (P. Bourke, "Edge blending using commodity projectors", 2004, with p = 2).
namespace Ramp {

/// \param pixel  counted from the edge of the tile; one beyond the ramp has all light
/// \param width  of the ramp, pixels
/// \return the share of the light at the middle of a pixel, 0 to 1. Two ramps that cover the same
///         pixels from both sides add up to 1
double share(int pixel, int width);

/// \return what a projector has to be given for a share of its full light, 0 to 1: light =
///         value ^ gamma
double valueFor(double light, double gamma);

/// The factors by which the pixels of a tile are multiplied. Between its ramps a tile is even; so
/// the factors are those of a small tile that has the same ramps and one even column and row.
struct Factors {
    int left = 0; ///< columns of the left ramp, as those of the others; the ramps fit into the tile
    int right = 0;
    int bottom = 0;
    int top = 0;
    int columns = 0; ///< left + right, and one even column if the tile has one
    int rows = 0;
    /// 3 * columns * rows: red, green, blue, 255 = unchanged; the lowest row first
    std::vector<unsigned char> rgb;

    /// \return whether a factor differs from 255
    bool changeSomething() const;
};

/// The factors of a tile's ramps and gain.
Factors factorsOf(const WallTile& tile);

} // namespace Ramp
