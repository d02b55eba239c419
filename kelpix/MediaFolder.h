#pragma once

#include <string>
#include <vector>

/// The files that the scene opens below the working directory.
namespace MediaFolder {

/// \return the names of the missing ones, in the order in which the scene opens them
std::vector<std::string> missingFiles();

/// Prints on standard error which files are missing, and how to make them. Prints nothing
/// when none is missing. The caller goes on: each file's reader decides what a missing file
/// does (docs/faults.md).
void reportMissingFiles();

} // namespace MediaFolder
