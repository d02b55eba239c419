#pragma once

#include "File.h"

#include <vector>

namespace media {

/// A part of the set that is made in one go, and can be asked for alone.
struct Asset {
    const char* name;  ///< what --only takes
    const char* about; ///< one line for --help
    std::vector<File> (*make)(const Request&);
};

/// The whole set, what takes longest first.
const std::vector<Asset>& assets();

/// The one of the set that makes the recordings.
const Asset& danceAsset();

} // namespace media
