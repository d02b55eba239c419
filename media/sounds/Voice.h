#pragma once

#include "File.h"

namespace media {

/// Makes sound/magpie_vocal.ogg: the song, which is the scene's clock as well.
std::vector<File> makeVoice(const Request& request);

} // namespace media
