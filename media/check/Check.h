#pragma once

#include "CheckReport.h"

namespace media {

/// Looks at every file of a media folder that the scene opens, in the order in which it does.
/// Changes nothing and plays nothing.
/// Throws std::runtime_error with a message for the user when \p folder is none.
std::vector<FileReport> checkFolder(const std::filesystem::path& folder);

/// Whether the scene runs with these files, and looks and sounds right.
bool playsWell(const std::vector<FileReport>& reports);

} // namespace media
