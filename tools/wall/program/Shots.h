#pragma once

#include "WallLayout.h"

#include <cstdint>
#include <filesystem>

namespace wall {

struct Options;

/// Saves pictures of a tile in the frames that the user has named.
class Shots {
public:
    /// Both are borrowed. Throws std::runtime_error when there is no folder for the pictures.
    Shots(const Options& options, const WallTile& tile);

    /// Saves FOLDER/COLUMN-ROW-FRAME.png, if that frame's is asked for: what is in the framebuffer.
    /// Needs: the tile's GL context, current. Throws std::runtime_error when it cannot be written.
    void save(std::uint32_t frame) const;

private:
    const Options& options;
    const WallTile& tile;
};

} // namespace wall
