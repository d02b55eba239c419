#pragma once

struct WallLayout;

/// Gives the tiles of a wall's grid their ramps: a tile has one at each side where it overlaps with
/// a tile of the grid, as wide as they overlap. Tiles with ramps from the second file keep them,
/// and tiles that it places get none.
/// \param layout  with the places of its tiles
void blendOverlaps(WallLayout& layout);
