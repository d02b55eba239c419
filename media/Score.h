#pragma once

#include <array>
#include <vector>

namespace media {

constexpr double BEAT = 0.84375;    ///< seconds
constexpr double PHRASE = 4 * BEAT; ///< seconds
constexpr double PRELUDE = 3.0;     ///< seconds before the first phrase, soft and without dance
constexpr double CODA = 9.0;        ///< seconds at the end in which the song and the dance die away
constexpr int PHRASES_PER_VERSE = 8;
constexpr int FIGURES = 3;

/// A vowel to sing on, or the hum of closed lips.
enum class Vowel { A, E, O, U, M };

struct Note {
    int pitch; ///< in semitones, 60 = the C of 261.6 Hz; 0 = silence
    double beats;
    Vowel vowel;
};

/// Four beats of the piece.
struct Phrase {
    std::vector<Note> melody; ///< beats add up to 4, the last note is a rest
    int bass;                 ///< pitch of the lower voice
    bool answered;            ///< whether the bird answers in the rest
};

/// What the leading voice sings in the coda, to rise with the figures and to breathe out as they
/// leave. In a short coda the beats are shorter.
extern const std::array<Note, 5> FAREWELL;
constexpr std::size_t LAST_BREATH = 4; ///< the note of it with which the figures leave

/// A phrase at its time.
struct Cue {
    double start; ///< seconds
    int verse;
    const Phrase* phrase; ///< borrows; lives as long as the program
};

/// The piece: verses of eight phrases between a prelude and a coda. The voice and the dance are
/// both made from it, so the figures move in step with what is sung.
struct Score {
    double seconds;
    double edges;          ///< length of prelude and coda, as a part of PRELUDE and CODA; 0 .. 1
    double prelude;        ///< its end in seconds
    double coda;           ///< its start in seconds
    std::vector<Cue> cues; ///< in order; none reaches into the coda
};

/// A piece that is too short for a whole prelude and coda has shorter ones, and a single phrase.
/// \param seconds  the length of the piece, more than PHRASE
Score makeScore(double seconds);

} // namespace media
