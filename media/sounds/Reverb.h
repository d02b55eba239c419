#pragma once

#include "Sound.h"

namespace media {

/// Puts a sound into a large, dark space: eight delay lines that feed each other (Jot's feedback
/// delay network with a Householder matrix), each losing its high notes a little faster than its
/// low ones.
/// \param decay  seconds until an echo is 60 dB down
/// \param wet    level of the echoes next to the sound itself
void reverberate(Sound& sound, float decay, float wet);

} // namespace media
