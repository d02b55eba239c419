#pragma once

#include "File.h"

namespace media {

/// Writes files below a folder, and prints a line for each. A file that is there with the same
/// content stays as it is, unless \p force.
///
/// Throws std::runtime_error, with a line for the user: before anything is written, when files are
/// there with other contents and \p force is not given; or when one cannot be written, and those
/// before it are.
void deliver(const std::vector<File>& files, const std::filesystem::path& folder, bool force);

} // namespace media
