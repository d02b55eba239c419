#include "Score.h"

#include <algorithm>

namespace media {

namespace {

// A tune in the Dorian mode on D. Its first half falls, its second half rises. Phrases come in
// pairs: the bird answers in the rest after the second of a pair.
const std::array<Phrase, PHRASES_PER_VERSE> VERSE = {{
    {{{62, 1.0, Vowel::O}, {69, 1.5, Vowel::A}, {67, 0.5, Vowel::O}, {0, 1.0, Vowel::O}},
     50,
     false},
    {{{65, 0.75, Vowel::O}, {67, 0.25, Vowel::O}, {69, 1.75, Vowel::A}, {0, 1.25, Vowel::A}},
     53,
     true},
    {{{72, 1.0, Vowel::A},
      {71, 0.5, Vowel::E},
      {69, 0.5, Vowel::A},
      {67, 1.0, Vowel::O},
      {0, 1.0, Vowel::O}},
     48,
     false},
    {{{69, 0.5, Vowel::O}, {65, 0.5, Vowel::O}, {62, 1.75, Vowel::U}, {0, 1.25, Vowel::U}},
     50,
     true},
    {{{62, 0.5, Vowel::O},
      {65, 0.5, Vowel::O},
      {69, 0.5, Vowel::A},
      {74, 1.5, Vowel::A},
      {0, 1.0, Vowel::A}},
     55,
     false},
    {{{76, 0.5, Vowel::E},
      {74, 0.5, Vowel::A},
      {72, 0.5, Vowel::A},
      {71, 0.5, Vowel::E},
      {69, 0.75, Vowel::O},
      {0, 1.25, Vowel::O}},
     57,
     true},
    {{{67, 0.5, Vowel::O},
      {69, 0.5, Vowel::A},
      {72, 1.0, Vowel::A},
      {69, 1.0, Vowel::O},
      {0, 1.0, Vowel::O}},
     53,
     false},
    {{{67, 0.5, Vowel::O}, {64, 0.5, Vowel::E}, {62, 1.75, Vowel::U}, {0, 1.25, Vowel::U}},
     50,
     true},
}};

} // namespace

const std::array<Note, 5> FAREWELL = {{{62, 1.0, Vowel::U},
                                       {65, 1.0, Vowel::O},
                                       {67, 1.0, Vowel::O},
                                       {69, 1.5, Vowel::A},
                                       {62, 4.0, Vowel::M}}};

Score makeScore(double seconds)
{
    const double edges = std::min(1.0, (seconds - PHRASE) / (PRELUDE + CODA));
    Score score{seconds, edges, edges * PRELUDE, seconds - edges * CODA, {}};
    for (int i = 0; i == 0 || score.prelude + (i + 1) * PHRASE <= score.coda; ++i) {
        score.cues.push_back({score.prelude + i * PHRASE, i / PHRASES_PER_VERSE,
                              &VERSE[static_cast<std::size_t>(i % PHRASES_PER_VERSE)]});
    }
    return score;
}

} // namespace media
