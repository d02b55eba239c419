#pragma once

/// Material libraries (MTL files) as plain values. Private to the OBJ library.

#include <string>
#include <unordered_map>
#include <vector>

namespace obj {

/// A map of a material.
struct Map {
    int ki = 0; ///< the property that it belongs to
    bool clamp = false;
    float o[3] = {0, 0, 0};
    float s[3] = {1, 1, 1};
    std::string name; ///< of the picture, as the library gives it; empty = none
};

/// A material of a library. Of each of its properties the last line counts.
struct Material {
    float c[5][4];         ///< colours, those of a new material where the library gives none
    std::vector<Map> maps; ///< at most one for each property, in the order of their lines
};

/// The materials of a library by name. Of several with the same name, the first counts.
using Library = std::unordered_map<std::string, Material>;

/// Reads a library; one that cannot be opened has no materials.
Library read_library(const std::string& path);

} // namespace obj
