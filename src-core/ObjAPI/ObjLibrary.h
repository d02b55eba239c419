#pragma once

/// Material libraries (MTL files) as plain values. Private to the OBJ library.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
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
    std::string name;
    float c[5][4];         ///< colors; those of a new material if the library has none
    std::vector<Map> maps; ///< at most one for each property, in the order of their lines
};

/// The materials of a library by name. A look-up touches few cache lines: a slot, and the material.
class Library {
public:
    /// \return null if there is none of this name; good until the next add, like that of add
    const Material* find(std::string_view name) const;

    /// Adds a material, whose colors are not set. \return null if the name is there already
    Material* add(std::string_view name);

private:
    /// Of a material: open addressing, with linear probing.
    struct Slot {
        std::uint32_t hash;  ///< of its name
        std::uint32_t place; ///< in the materials, counted from 1; 0 = an empty slot
    };

    std::vector<Slot> slots_; ///< none, or a power of two, more than half of them empty
    std::vector<Material> materials_;

    std::size_t slot_of(std::string_view name, std::uint32_t hash) const;
    void enlarge();
};

/// Reads a library. A file that cannot be opened has no materials.
Library read_library(const std::string& path);

} // namespace obj
