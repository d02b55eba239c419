#pragma once

#include <filesystem>

/// The folder whose media a program plays.
/// \param named      what the user has named, may be empty
/// \param installed  where the installed media are, as seen from the program's own folder
/// \return \p named if it is not empty, else "." if that holds data/mocap.txt, else the installed
///         media, which may be missing
std::filesystem::path mediaToPlay(const std::filesystem::path& named,
                                  const std::filesystem::path& installed);
