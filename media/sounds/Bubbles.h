#pragma once

#include "File.h"

namespace media {

/// Makes sound/bubbles_sound.ogg: the loop that plays beneath the voice.
std::vector<File> makeBubbles(const Request& request);

} // namespace media
