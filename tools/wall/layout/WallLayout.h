#pragma once

#include "PixelRect.h"
#include "TileDescription.h"
#include "WallFiles.h"
#include "WallSettings.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

/// What the numbers of a wall's two files mean, and where that puts each tile. docs/wall.md tells
/// it to users, with a drawing of the frames.
///
/// Three frames, all in pixels:
///  - the wall: W by H, the origin at the lower left corner of the lowest, leftmost tile, as GL has
///    it. Gaps between tiles count: what lies behind a bezel is not drawn, but keeps its place.
///    Where this header says so, the origin is at the top left, and y goes down.
///  - a tile's window: w by h, the origin at its lower left corner, as GL has it.
///  - a host's desktop: the origin at the top left, y goes down.

/// One window of the wall, and the rank that draws it.
struct WallTile {
    int rank = 0;          ///< its place in WallLayout::tiles: windows are counted in file order
    std::string host;      ///< letters, digits, '.', '-' and '_', the first one a letter or digit
    int window = 0;        ///< its place among the windows of its host, from 0
    int column = 0;        ///< in the grid, from the left
    int row = 0;           ///< in the grid, from the top
    PixelRect desktop;     ///< the window, on the desktop
    PixelRect place;       ///< the tile on the wall, origin at the top left, without Offset
    bool isPlaced = false; ///< place comes from the second file, not from the grid
    PixelRect wall;        ///< the tile on the wall, with Offset: it may then reach beyond the wall
    PixelRect viewport;    ///< for glViewport: the whole wall as seen from the window's lower left
                           ///< corner. Where a pixel of the window is one of the wall, it is
                           ///< (-wall.x, -wall.y, W, H)
    PixelRect drawn;       ///< for glScissor: the part of the window that the cameras fill
    std::string display;   ///< X display; empty = that of the session
    Blend blend;           ///< ramps, in pixels of the window
    bool blendIsGiven = false;             ///< by the second file, not by the overlap of the tiles
    std::array<float, 3> gain = {1, 1, 1}; ///< light of red, green, blue, 0 to 1
};

/// A whole wall.
struct WallLayout {
    static constexpr int MOST_TILES = 1024;
    static constexpr int LARGEST_TILE = 16384;   ///< side of a window
    static constexpr int LARGEST_WALL = 1 << 20; ///< side of a wall

    int columns = 0; ///< of the grid
    int rows = 0;
    std::array<int, 2> pitch = {}; ///< pixels from a tile of the grid to the next one, in x and in
                                   ///< y; 0 when the second file places all tiles
    int width = 0;                 ///< W, pixels
    int height = 0;
    double rate = 40;             ///< frames per second
    std::optional<unsigned> seed; ///< none = not given
    Fit fit = Fit::contain;
    std::string media;           ///< folder; empty = not given
    std::vector<WallTile> tiles; ///< by rank; at least one

    /// How much larger than the camera's own the picture has to be for its fit. The camera shows
    /// the height of the square, whatever the width is: 1 is right for contain on a wall that is
    /// wider than high, and for cover on one that is higher than wide.
    /// \return the factor for the x and y of the projection, greater than 0
    float projectionScale() const;

    /// The wall in windows on one desktop, where it can be looked at in small: the desktop's pixels
    /// are those of the wall, scaled, from the desktop's upper left corner on. Tiles of a grid that
    /// overlap stand beside each other, so that each is seen whole with its ramps. Displays are
    /// those of the session, and every pixel of a window is one of the scaled wall.
    /// \param scale  greater than 0, at most 1; made smaller where a window would have a side of
    ///               more than LARGEST_TILE. No window has less than one pixel
    WallLayout simulated(double scale) const;
};

/// Finds out where each tile is.
/// \param files   their bytes
/// \param layout  receives the wall; undefined after a problem
/// \return nothing, or the first thing that is wrong in one of the files
/// \throws std::bad_alloc
std::optional<TileProblem> layOut(const WallFiles& files, WallLayout& layout);

/// What an OpenGL context can do.
struct GLLimits {
    std::array<int, 2> viewport = {}; ///< GL_MAX_VIEWPORT_DIMS: width and height
    std::array<float, 2> bounds = {}; ///< GL_VIEWPORT_BOUNDS_RANGE: of the viewport's origin; both
                                      ///< 0 = there is no such limit
};

/// Looks whether a context can draw a tile. GL would cut what is beyond its limits without a word.
/// \return nothing, or a line that says what is beyond them
std::optional<std::string> beyondLimits(const WallTile& tile, const GLLimits& limits);
