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
