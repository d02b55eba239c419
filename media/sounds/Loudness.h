#pragma once

#include "Score.h"
#include "Sound.h"

namespace media {

/// The loudness of a part of a sound in LUFS, as ITU-R BS.1770-4 and EBU R 128 have it: weighted by
/// frequency, in overlapping blocks of 0.4 s, those left out that are 10 LU below the others.
/// \param from,to  seconds
/// \return -70 for silence, and for less than a block
double loudness(const Sound& sound, double from, double to);

/// Makes the phrases of a piece nearly equally loud, a fifth of a decibel louder from verse to
/// verse up to the fourth: a gain for each, which glides in the rests.
void levelPhrases(Sound& sound, const Score& score);

} // namespace media
