#pragma once

#include "Poses.h"

#include <filesystem>

namespace media {

/// The shortest and the longest dance that is made, in seconds.
constexpr double SHORTEST_DANCE = 5;
constexpr double LONGEST_DANCE = 3600;

/// Reads a table of poses that a person has typed: lines "TIME FIGURE X Y" or "TIME FIGURE home",
/// the times of each figure growing from line to line. Empty lines, and what follows '#', mean
/// nothing.
///
/// Throws std::runtime_error, with a line for the user that begins with the name of the file and
/// the number of the line, at the first line that makes no sense. No line may be longer than 200
/// characters, and no table may have more than 100000 lines.
/// \return at least one station; its places are -1 .. 2, its times 0 .. LONGEST_DANCE
Stations readPoseTable(const std::filesystem::path& path);

} // namespace media
