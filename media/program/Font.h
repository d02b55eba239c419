#pragma once

#include "File.h"

namespace media {

/// Makes fonts/ChalkboardBold.ttf and the text of its license.
std::vector<File> makeFont(const Request& request);

} // namespace media
