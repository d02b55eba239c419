#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace media {

/// What the command line asks for. The defaults make the set that the scene plays.
struct Request {
    std::uint64_t seed = 1;
    int waterSize = 1024;              ///< pixels, a power of two
    double seconds = 120;              ///< the length of the voice and of the dance
    bool wide = false;                 ///< composed for WIDE_VIEW, not for SQUARE_VIEW
    std::filesystem::path table;       ///< the poses of the dance; empty = it follows the song
    std::filesystem::path font;        ///< copied as the scene's font
    std::filesystem::path fontLicense; ///< copied beside it; empty = none is
};

/// One file of the set, complete in memory. Its bytes depend on the Request alone.
struct File {
    std::string name;    ///< below the set's folder, "data/fish0.png"
    std::string bytes;   ///< the whole content
    std::string summary; ///< a few words for the progress line
};

} // namespace media
