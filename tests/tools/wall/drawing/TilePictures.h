#pragma once

#include "GLTest.h"
#include "WallLayout.h"

#include <array>
#include <cstddef>
#include <vector>

/// The pixels of a tile's window, or of a whole wall; the lowest row first.
struct TilePicture {
    int width;
    int height;
    std::vector<unsigned char> rgb;

    TilePicture(int w, int h)
        : width(w), height(h), rgb(static_cast<std::size_t>(3 * w) * static_cast<std::size_t>(h))
    {
    }

    std::array<int, 3> at(int x, int y) const
    {
        const std::size_t first =
            3 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                 static_cast<std::size_t>(x));
        return {rgb.at(first), rgb.at(first + 1), rgb.at(first + 2)};
    }
};

/// Reads the lower left corner of the back buffer, as large as a tile's window. A window of the
/// fixture's size has room for it.
inline TilePicture readTile(const WallTile& tile)
{
    TilePicture picture(tile.desktop.w, tile.desktop.h);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, picture.width, picture.height, GL_RGB, GL_UNSIGNED_BYTE, picture.rgb.data());
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    return picture;
}
