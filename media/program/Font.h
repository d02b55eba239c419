#pragma once

#include "File.h"

namespace media {

/// Makes fonts/ChalkboardBold.ttf and the text of its licence.
std::vector<File> makeFont(const Request& request);

} // namespace media
