#pragma once

#include "File.h"

namespace media {

/// Makes sound/magpie_vocal.ogg: the song, which is also the scene's clock.
std::vector<File> makeVoice(const Request& request);

} // namespace media
