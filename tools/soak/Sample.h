#pragma once

#include <cstddef>
#include <cstdint>

class Environment;

namespace soak {

/// What the scene holds at one moment.
struct Sample {
    double hours = 0;             ///< of the scene
    std::size_t fish = 0;         ///< living
    std::size_t bubbles = 0;      ///< living
    std::size_t lists = 0;        ///< display lists in the GL
    std::size_t listsOfNodes = 0; ///< display lists that the living nodes account for
    std::size_t textures = 0;     ///< textures in the GL
    std::size_t slots = 0;        ///< entries of the grid's cells, vacated ones included
    std::size_t heap = 0;         ///< bytes in use; says nothing under a sanitizer
};

/// Counts the nodes below \p water, their display lists and the slots, after a frame was drawn.
Sample countNodes(Environment* water);

/// Bytes of the C library's heap in use; a sanitizer has a heap of its own.
std::size_t heapInUse();

} // namespace soak
