#include <GL/glew.h>

#include "Shots.h"

#include "Options.h"
#include "PictureFile.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace wall {

Shots::Shots(const Options& given, const WallTile& own) : options(given), tile(own)
{
    if (!options.shots.empty() && !std::filesystem::is_directory(options.shots)) {
        throw std::runtime_error("no folder " + options.shots.string() + " for the pictures");
    }
}

void Shots::save(std::uint32_t frame) const
{
    if (std::find(options.shotFrames.begin(), options.shotFrames.end(), frame) ==
        options.shotFrames.end()) {
        return;
    }
    const int width = tile.desktop.w;
    const int height = tile.desktop.h;
    record::Picture picture{width, height, {}};
    picture.pixels.resize(picture.rowBytes() * static_cast<std::size_t>(height));
    // GL's rows are bottom-up.
    for (int row = 0; row < height; ++row) {
        glReadPixels(0, height - 1 - row, width, 1, GL_RGBA, GL_UNSIGNED_BYTE,
                     &picture.pixels[picture.rowBytes() * static_cast<std::size_t>(row)]);
    }
    const std::string name = std::to_string(tile.column) + "-" + std::to_string(tile.row) + "-" +
                             std::to_string(frame) + ".png";
    record::writePng(options.shots / name, picture);
}

} // namespace wall
