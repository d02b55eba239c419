#include "Overlap.h"
#include "WallLayout.h"

#include <algorithm>
#include <cmath>

namespace {

int scaled(double pixels, double scale)
{
    return static_cast<int>(std::lround(pixels * scale));
}

/// Scales the edges of a rectangle, so that neighbors stay neighbors.
PixelRect scaled(const PixelRect& rect, double xScale, double yScale)
{
    const int left = scaled(rect.x, xScale);
    const int top = scaled(rect.y, yScale);
    return {left, top, std::max(1, scaled(rect.x + rect.w, xScale) - left),
            std::max(1, scaled(rect.y + rect.h, yScale) - top)};
}

/// Scales a tile but for what depends on the size of the scaled wall.
WallTile scaled(const WallTile& tile, const WallLayout& layout, double scale)
{
    WallTile result = tile;
    result.display.clear();
    result.place = scaled(tile.place, scale, scale);

    PixelRect window = tile.place;
    if (!tile.isPlaced) {
        window.x += tile.column * std::max(0, tile.place.w - layout.pitch[0]);
        window.y += tile.row * std::max(0, tile.place.h - layout.pitch[1]);
    }
    const PixelRect spread = scaled(window, scale, scale);
    result.desktop = {spread.x, spread.y, result.place.w, result.place.h};

    const double xScale = static_cast<double>(result.desktop.w) / tile.desktop.w;
    const double yScale = static_cast<double>(result.desktop.h) / tile.desktop.h;
    result.drawn = scaled(tile.drawn, xScale, yScale);
    result.blend = {scaled(tile.blend.left, xScale), scaled(tile.blend.right, xScale),
                    scaled(tile.blend.bottom, yScale), scaled(tile.blend.top, yScale),
                    tile.blend.gamma};
    return result;
}

} // namespace

WallLayout WallLayout::simulated(double scale) const
{
    for (const WallTile& tile : tiles) {
        scale = std::min(scale,
                         static_cast<double>(LARGEST_TILE) / std::max(tile.place.w, tile.place.h));
    }
    WallLayout result = *this;
    result.pitch = {scaled(pitch[0], scale), scaled(pitch[1], scale)};
    result.width = scaled(width, scale);
    result.height = scaled(height, scale);
    for (WallTile& tile : result.tiles) {
        tile = scaled(tile, *this, scale);
        result.width = std::max(result.width, tile.place.x + tile.place.w);
        result.height = std::max(result.height, tile.place.y + tile.place.h);
    }
    for (std::size_t i = 0; i < tiles.size(); ++i) {
        const WallTile& tile = tiles[i];
        const PixelRect& place = result.tiles[i].place;
        // What Offset has moved it by.
        const int right = tile.wall.x - tile.place.x;
        const int up = tile.wall.y - (height - tile.place.y - tile.place.h);
        PixelRect& wall = result.tiles[i].wall;
        wall = {place.x + scaled(right, scale),
                result.height - place.y - place.h + scaled(up, scale), place.w, place.h};
        result.tiles[i].viewport = {-wall.x, -wall.y, result.width, result.height};
    }
    blendOverlaps(result);
    return result;
}
