#pragma once

#include <string>
#include <vector>

/// The files that the scene opens below the working directory.
namespace MediaFolder {

/// \return the names of those that are not there, in the order in which the scene opens them
std::vector<std::string> missingFiles();

/// Says on standard error which files are missing, and how to make them; nothing when none is.
/// The scene then goes as far as it can: what follows from each missing file is its reader's.
void reportMissingFiles();

} // namespace MediaFolder
