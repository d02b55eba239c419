#pragma once

#include <cstdint>

namespace osc {

/// What has arrived since the start.
struct Counts {
    std::uint64_t packets = 0;   ///< that were read
    std::uint64_t malformed = 0; ///< of them: no OSC, and nothing of them was done
    std::uint64_t messages = 0;  ///< in all other packets
    std::uint64_t dropped = 0;   ///< of the messages: the sum of the next four
    std::uint64_t unknown = 0;   ///< of an address that there is not
    std::uint64_t refused = 0; ///< of wrong types, with numbers that are not finite or out of range
    std::uint64_t early = 0;   ///< in bundles for a time more than a minute ahead
    std::uint64_t full = 0;    ///< for which there was no room
    std::uint64_t late =
        0; ///< of the messages: in bundles whose time had passed; they were done at once
    std::uint64_t unanswered = 0; ///< of the questions: those beyond the rate of answers
};

} // namespace osc
