#include "Choreography.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using media::Point;
using media::Pose;

class ChoreographyTest : public testing::TestWithParam<double> {};

TEST_P(ChoreographyTest, StartsAndEndsAtHomeAndNeverJumps)
{
    for (const bool marked : {false, true}) {
        const auto poses = media::choreograph(media::makeScore(GetParam()), marked);
        ASSERT_EQ(poses.size(), static_cast<std::size_t>(std::ceil(90 * GetParam()) + 1));
        // The end of the prelude, and the second of rest at the end; a tenth of a short piece.
        const std::size_t start = GetParam() < 15 ? poses.size() / 10 : 3 * 90;
        const std::size_t rest = GetParam() < 15 ? poses.size() / 10 : 90;
        for (std::size_t k = 0; k < media::FIGURES; ++k) {
            const Point home = media::homeOf(static_cast<int>(k));
            for (std::size_t i = 0; i < poses.size(); ++i) {
                if (i < start || i + rest >= poses.size()) {
                    ASSERT_EQ(poses[i][k].x, home.x) << i;
                    ASSERT_EQ(poses[i][k].y, home.y) << i;
                } else {
                    // Three records are the most that one update of the scene passes over.
                    ASSERT_LT(media::length(poses[i][k] - poses[i - 3][k]), 0.012f) << i;
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Lengths, ChoreographyTest,
                         testing::Values(5, 7.25, 14.9, 20, 37, 120, 300));

TEST(ChoreographyShortTest, TheFiguresComeIntoThePicture)
{
    for (const double seconds : {5.0, 8.0, 15.0}) {
        const auto poses = media::choreograph(media::makeScore(seconds), false);
        for (const Point place : poses[poses.size() / 2]) {
            EXPECT_GT(place.y, 0.25f) << seconds;
        }
    }
}

TEST(ChoreographyTest, LeadsTheFiguresToThePlacesOfThePhrase)
{
    const media::Score score = media::makeScore(60);
    const auto poses = media::choreograph(score, false);
    for (const media::Cue& cue : score.cues) {
        const auto end = static_cast<std::size_t>(std::floor((cue.start + media::PHRASE) * 90)) - 1;
        for (std::size_t k = 0; k < media::FIGURES; ++k) {
            const bool mirrored = cue.verse % 2 == 1;
            const Point place = cue.phrase->places[mirrored ? 2 - k : k];
            EXPECT_NEAR(poses[end][k].x, mirrored ? 1 - place.x : place.x, 1e-4f);
            EXPECT_NEAR(poses[end][k].y, place.y, 1e-4f);
        }
    }
}

TEST(ChoreographyTest, MarksTheSamePlacesInTheRehearsal)
{
    const media::Score score = media::makeScore(60);
    const auto dance = media::choreograph(score, false);
    const auto rehearsal = media::choreograph(score, true);
    bool different = false;
    for (std::size_t i = 0; i < dance.size(); ++i) {
        different = different || media::length(dance[i][1] - rehearsal[i][1]) > 0.005f;
    }
    EXPECT_TRUE(different);
    for (const media::Cue& cue : score.cues) {
        const auto end = static_cast<std::size_t>(std::floor((cue.start + media::PHRASE) * 90)) - 1;
        EXPECT_LT(media::length(dance[end][0] - rehearsal[end][0]), 1e-4f);
    }
}

} // namespace
