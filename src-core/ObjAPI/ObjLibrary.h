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
    std::string name; ///< of the image file, as the library has it; empty = none
};

/// A material of a library. If a property has several lines, the last one counts.
struct Material {
    float c[5][4];         ///< colors; those of a new material if the library has none
    std::vector<Map> maps; ///< at most one for each property, in the order of their lines
};

/// The materials of a library by name. If several have the same name, the first one counts.
using Library = std::unordered_map<std::string, Material>;

/// Reads a library. A file that cannot be opened has no materials.
Library read_library(const std::string& path);

} // namespace obj
