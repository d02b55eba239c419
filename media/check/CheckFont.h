#pragma once

#include "CheckReport.h"

namespace media {

/// Checks fonts/ChalkboardBold.ttf of a media folder.
FileReport checkFont(const std::filesystem::path& folder);

} // namespace media
