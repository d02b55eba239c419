#include "WallFigures.h"

#include <algorithm>
#include <map>
#include <utility>

namespace {

WallFigures::Point middleOf(const PixelRect& rect)
{
    return {static_cast<float>(rect.x) + static_cast<float>(rect.w) / 2,
            static_cast<float>(rect.y) + static_cast<float>(rect.h) / 2};
}

/// \return the middle of the facing edges of two tiles, the second one to the right
WallFigures::Point seamBeside(const PixelRect& left, const PixelRect& right)
{
    return {static_cast<float>(left.x + left.w + right.x) / 2,
            (middleOf(left).y + middleOf(right).y) / 2};
}

/// The same of two tiles, the second one below.
WallFigures::Point seamBetween(const PixelRect& upper, const PixelRect& lower)
{
    return {(middleOf(upper).x + middleOf(lower).x) / 2,
            static_cast<float>(upper.y + lower.y + lower.h) / 2};
}

float quarterOf(const PixelRect& a, const PixelRect& b)
{
    return static_cast<float>(std::min({a.w, a.h, b.w, b.h})) / 4;
}

} // namespace

WallFigures::WallFigures(const WallLayout& layout)
{
    const auto width = static_cast<float>(layout.width);
    const auto height = static_cast<float>(layout.height);
    const float side = std::min(width, height);
    thickness = std::max(2.0F, side / 300);
    const Point middle = {width / 2, height / 2};
    circles.push_back({middle, side / 2 - thickness});
    circles.push_back({middle, side / 4});

    std::map<std::pair<int, int>, const PixelRect*> grid;
    for (const WallTile& tile : layout.tiles) {
        grid[{tile.column, tile.row}] = &tile.wall;
    }
    for (const auto& [cell, tile] : grid) {
        const auto [column, row] = cell;
        if (const auto other = grid.find({column + 1, row}); other != grid.end()) {
            circles.push_back(
                {seamBeside(*tile, *other->second), quarterOf(*tile, *other->second)});
        }
        if (const auto other = grid.find({column, row + 1}); other != grid.end()) {
            circles.push_back(
                {seamBetween(*tile, *other->second), quarterOf(*tile, *other->second)});
        }
    }
}
