#pragma once

#include "Sound.h"

namespace media {

/// Adds the reverberation of a large, dark space: Jot's feedback delay network, eight delay lines
/// with a Householder matrix. High frequencies decay faster than low ones. \param decay  seconds
/// until an echo is 60 dB down \param wet    level of the echoes, relative to the sound itself
void reverberate(Sound& sound, float decay, float wet);

} // namespace media
