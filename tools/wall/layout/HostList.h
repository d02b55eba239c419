#pragma once

#include <string>

struct WallLayout;

/// The hosts of a wall as texts for Open MPI's mpirun, in rank order. WallLayout's names hold
/// nothing that mpirun or a shell could take for something else. Hosts without windows are left
/// out.
namespace hosts {

/// For --host: "reef-left:2,reef-right:1", a slot for each window.
std::string option(const WallLayout& layout);

/// For --hostfile: a line "reef-left slots=2" for each host.
std::string file(const WallLayout& layout);

/// For --hostfile with the sequential mapper, --map-by seq: a line with the host's name for each
/// rank.
std::string sequence(const WallLayout& layout);

} // namespace hosts
