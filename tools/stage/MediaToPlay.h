#pragma once

#include <filesystem>
#include <initializer_list>

/// \return a path that is given as seen from the folder of this process's program
std::filesystem::path fromProgram(const std::filesystem::path& path);

/// The folder whose media a program plays.
/// \param named      what the user has named, may be empty
/// \param installed  where the installed media are, as seen from the program's own folder
/// \return \p named if it is not empty, else "." if that holds data/mocap.txt, else the installed
///         media, which may be missing
std::filesystem::path mediaToPlay(const std::filesystem::path& named,
                                  const std::filesystem::path& installed);

/// Enters the folder of the media. Names of files that are not empty are made absolute before, so
/// that they mean the same there.
/// \throws std::runtime_error when it cannot be entered
void enterFolder(const std::filesystem::path& folder,
                 std::initializer_list<std::filesystem::path*> files);
