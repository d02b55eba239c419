#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace record {

/// A picture in memory.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels; ///< RGBA, rows top-down without padding; alpha means nothing

    std::size_t rowBytes() const { return std::size_t{4} * static_cast<std::size_t>(width); }
};

} // namespace record
