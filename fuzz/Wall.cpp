/// The input is the description of a wall and, after a line "@@@", its second file.

#include "Harness.h"
#include "HostList.h"
#include "WallLayout.h"

namespace {

bool isWithin(const PixelRect& part, const PixelRect& window)
{
    return part.x >= 0 && part.y >= 0 && part.w > 0 && part.h > 0 && part.x + part.w <= window.w &&
           part.y + part.h <= window.h;
}

void check(const WallTile& tile, const WallLayout& wall)
{
    using fuzz::expect;
    const PixelRect& window = tile.desktop;
    expect(window.w >= 1 && window.w <= WallLayout::LARGEST_TILE && window.h >= 1 &&
               window.h <= WallLayout::LARGEST_TILE,
           "a window has pixels, and not too many");
    expect(isWithin(tile.drawn, window), "the cameras draw into their window");
    expect(tile.place.x >= 0 && tile.place.x + tile.place.w <= wall.width && tile.place.y >= 0 &&
               tile.place.y + tile.place.h <= wall.height,
           "the tile is on the wall");
    expect(tile.viewport.w >= window.w - 1 && tile.viewport.h >= window.h - 1,
           "the wall is not smaller than the tile");
    expect(tile.column >= 0 && tile.column < wall.columns && tile.row >= 0 && tile.row < wall.rows,
           "the tile is in the grid");
    expect(tile.host.find_first_of(" \n:,;=\"'$@/\\") == std::string::npos && tile.host[0] != '-',
           "the host's name is safe");
    const Blend& blend = tile.blend;
    expect(blend.left >= 0 && blend.right >= 0 && blend.bottom >= 0 && blend.top >= 0 &&
               blend.gamma >= 1 && blend.gamma <= 3,
           "ramps have a width");
}

void check(const WallLayout& wall)
{
    using fuzz::expect;
    expect(!wall.tiles.empty() && wall.tiles.size() <= WallLayout::MOST_TILES, "there are tiles");
    expect(wall.width >= 1 && wall.width <= WallLayout::LARGEST_WALL && wall.height >= 1 &&
               wall.height <= WallLayout::LARGEST_WALL,
           "the wall has a size");
    expect(wall.projectionScale() > 0, "the picture has a size");
    for (const WallTile& tile : wall.tiles) {
        check(tile, wall);
    }
}

} // namespace

void fuzz::test(std::string_view input)
{
    const std::vector<std::string_view> files = parts(input);
    WallFiles bytes{"reef.cfg", std::string(files.empty() ? "" : files[0]), files.size() > 1, ""};
    if (bytes.hasMore) {
        bytes.more = files[1];
    }
    WallLayout wall;
    const auto problem = call([&] { return layOut(bytes, wall); });
    if (problem) {
        expect(!problem->what.empty() && problem->line >= 0 &&
                   problem->text().find_first_of("\n\x1b") == std::string::npos,
               "a problem is a line");
        return;
    }
    check(wall);
    for (const WallTile& tile : wall.tiles) {
        expect(tile.blend.left + tile.blend.right <= tile.desktop.w &&
                   tile.blend.bottom + tile.blend.top <= tile.desktop.h,
               "ramps fit into the window");
    }
    for (const double scale : {0.02, 0.37, 1.0}) {
        check(wall.simulated(scale));
    }
    const std::string ranks = hosts::sequence(wall);
    expect(static_cast<std::size_t>(std::count(ranks.begin(), ranks.end(), '\n')) ==
               wall.tiles.size(),
           "each rank has a host");
}
