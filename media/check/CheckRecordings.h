#pragma once

#include "CheckReport.h"

namespace media {

/// Checks data/mocap.txt of a media folder, and then each recording that it names.
/// \param voiceSeconds  the length of the voice; 0 = not known, the recordings then count as
///                      just as long
std::vector<FileReport> checkRecordings(const std::filesystem::path& folder, double voiceSeconds);

} // namespace media
