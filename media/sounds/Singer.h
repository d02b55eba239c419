#pragma once

#include "Score.h"
#include "Sound.h"

#include <cstdint>

namespace media {

/// A note with its time and strength.
struct SungNote {
    double start;    ///< seconds
    double duration; ///< seconds
    double pitch;    ///< semitones, as in Note
    Vowel vowel;
    float loudness; ///< 0 .. 1
};

/// What makes one singer of a choir differ from the next.
struct Singer {
    std::uint64_t seed;
    float pan;    ///< 0 = left .. 1 = right
    float gain;   ///< of the whole line
    float detune; ///< cents
    double late;  ///< seconds behind the beat
    float tract;  ///< factor of the formants' frequencies, 0.9 .. 1.1: below 1 for a larger body
};

/// Adds a line of notes to a sound, sung by formant synthesis: a source of 25 harmonics and some
/// noise goes through four resonators, tuned to the formants of the vowel (the source-filter model
/// of Fant, "Acoustic Theory of Speech Production", 1960). The first formant is never below the
/// note. After a rest a note swells up in an eighth of a second, from nothing. The pitch glides
/// from note to note, with a vibrato of 5.3 Hz once a note is held. \param notes  in order of time,
/// not overlapping
void sing(Sound& sound, const Singer& singer, const std::vector<SungNote>& notes);

} // namespace media
