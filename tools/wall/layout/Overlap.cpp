#include "Overlap.h"

#include "WallLayout.h"

#include <algorithm>
#include <map>
#include <utility>

namespace {

using Grid = std::map<std::pair<int, int>, const WallTile*>;

const WallTile* at(const Grid& grid, int column, int row)
{
    const auto found = grid.find({column, row});
    return found != grid.end() ? found->second : nullptr;
}

/// \return how many columns of pixels two neighbors share; 0 when one is missing
int sharedColumns(const WallTile* left, const WallTile* right)
{
    return left != nullptr && right != nullptr
               ? std::max(0, left->place.x + left->place.w - right->place.x)
               : 0;
}

int sharedRows(const WallTile* upper, const WallTile* lower)
{
    return upper != nullptr && lower != nullptr
               ? std::max(0, upper->place.y + upper->place.h - lower->place.y)
               : 0;
}

} // namespace

void blendOverlaps(WallLayout& layout)
{
    Grid grid;
    for (const WallTile& tile : layout.tiles) {
        if (!tile.isPlaced) {
            grid[{tile.column, tile.row}] = &tile;
        }
    }
    for (WallTile& tile : layout.tiles) {
        if (tile.isPlaced || tile.blendIsGiven) {
            continue;
        }
        const int column = tile.column;
        const int row = tile.row;
        tile.blend.left = sharedColumns(at(grid, column - 1, row), &tile);
        tile.blend.right = sharedColumns(&tile, at(grid, column + 1, row));
        tile.blend.top = sharedRows(at(grid, column, row - 1), &tile);
        tile.blend.bottom = sharedRows(&tile, at(grid, column, row + 1));
    }
}
