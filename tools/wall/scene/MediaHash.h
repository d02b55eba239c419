#pragma once

#include <cstdint>

namespace wall {

/// What cannot be read of a file or a folder counts as if it were not there.
/// \return a number of all files in data, sound and fonts below the working directory, their names
///         and contents: the same for equal media, different, short of a collision, for others
std::uint64_t hashOfMedia();

} // namespace wall
