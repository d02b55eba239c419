#pragma once

#include <chrono>
#include <cstdint>

namespace osc {

/// What a message asked for. Numbers are finite and within the ranges given here.
struct Command {
    enum class Kind {
        FIGURE,  ///< put a figure to a place
        RELEASE, ///< give a figure back to its recording
        ZOOM,    ///< zoom the view
        MOVE,    ///< move the view
        TURN,    ///< turn the view
        CLICK,   ///< click at a place
        SEED,    ///< begin anew with that seed
        RESTART  ///< begin anew with the same seed
    };
    Kind kind = Kind::RELEASE;
    int figure = 0; ///< FIGURE, RELEASE: 0 to 2
    /// FIGURE, CLICK: a place in the picture, 0 to 1, from the left and from the bottom. MOVE: by
    /// how much, in widths and heights of the picture, -1 to 1. TURN: degrees, -180 to 180. ZOOM:
    /// steps of a mouse wheel in x, -10 to 10, more than 0 is closer.
    float x = 0;
    float y = 0;
    std::uint32_t seed = 0; ///< SEED
    /// When it came due, of std::chrono::steady_clock: when it arrived, or the time of its bundle.
    std::chrono::nanoseconds due{0};
};

} // namespace osc
