#pragma once

#include <string>

struct WallLayout;

namespace hosts {

/// The hosts of a wall for Open MPI's mpirun: a line with the host's name for each rank, in rank
/// order, for --hostfile and the sequential mapper, --map-by seq. WallLayout's names hold nothing
/// that mpirun could take for something else.
std::string sequence(const WallLayout& layout);

} // namespace hosts
