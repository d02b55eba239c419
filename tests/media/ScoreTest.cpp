#include "Score.h"

#include <gtest/gtest.h>

namespace {

using media::Note;

TEST(ScoreTest, FillsTwoMinutesWithFourVerses)
{
    const media::Score score = media::makeScore(120);
    ASSERT_EQ(score.cues.size(), 32u);
    EXPECT_EQ(score.cues.front().start, 3.0);
    EXPECT_EQ(score.cues.back().verse, 3);
    EXPECT_EQ(score.cues.back().start + media::PHRASE, score.coda);
    EXPECT_EQ(score.coda, 111.0);
}

TEST(ScoreTest, KeepsAnyLengthOutOfTheCoda)
{
    for (int seconds = 20; seconds <= 600; ++seconds) {
        const media::Score score = media::makeScore(seconds);
        ASSERT_FALSE(score.cues.empty()) << seconds;
        EXPECT_LE(score.cues.back().start + media::PHRASE, score.coda) << seconds;
        EXPECT_GT(score.cues.back().start + 2 * media::PHRASE, score.coda)
            << "no phrase is missing";
    }
}

TEST(ScoreTest, HasASinglePhraseInAShortPieceBetweenAShorterPreludeAndCoda)
{
    // A prelude of 3 s and a coda of 9 s around a phrase of 3.375 s: 15.375 s, and half as long
    // edges in 9.375 s.
    const media::Score whole = media::makeScore(15.375);
    EXPECT_EQ(whole.edges, 1);
    EXPECT_EQ(whole.cues.size(), 1U);
    EXPECT_EQ(whole.cues[0].start, 3);
    const media::Score half = media::makeScore(9.375);
    EXPECT_EQ(half.edges, 0.5);
    ASSERT_EQ(half.cues.size(), 1U);
    EXPECT_EQ(half.cues[0].start, 1.5);
    EXPECT_EQ(half.coda, 4.875);
    EXPECT_EQ(media::makeScore(5).cues.size(), 1U);
}

TEST(ScoreTest, HasPhrasesOfFourBeatsThatEndInARest)
{
    for (const media::Cue& cue : media::makeScore(120).cues) {
        double beats = 0;
        for (const Note& note : cue.phrase->melody) {
            beats += note.beats;
        }
        EXPECT_EQ(beats, 4);
        EXPECT_EQ(cue.phrase->melody.back().pitch, 0);
        EXPECT_GE(cue.phrase->melody.back().beats, 1);
        EXPECT_NE(cue.phrase->melody.front().pitch, 0);
    }
}

} // namespace
