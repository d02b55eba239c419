#pragma once

#include "WallLayout.h"

#include <string>
#include <vector>

namespace wall {

/// \return whether this process is a rank that a launcher of MPI has started
bool isRank();

/// \return whether it is the first of them
bool isFirstRank();

/// The command that starts a program once for each tile of the wall, on the tile's host.
/// \param thisHost  the name of this machine: a wall of its own needs no network
/// \param hostFile  a file with the hosts of all ranks, one a line (hosts::sequence)
/// \param command   the program, by its full path, and its arguments, all of which the ranks get;
///                  a path ":" becomes "./:"
std::vector<std::string> launchCommand(const WallLayout& layout, const std::string& thisHost,
                                       const std::string& hostFile,
                                       const std::vector<std::string>& command);

/// Makes a file in memory, which lives as long as this process and what it becomes.
/// \return its path, for this process. Throws std::runtime_error when there is no memory for it
std::string fileInMemory(const std::string& bytes);

/// Keeps Open MPI from looking for X servers. To be called before it is started.
void quietenTopology();

/// Becomes that command. Throws std::runtime_error when it cannot.
[[noreturn]] void launch(const std::vector<std::string>& command);

/// gethostname, cut to 31 characters as the wall's description has it.
std::string hostName();

} // namespace wall
