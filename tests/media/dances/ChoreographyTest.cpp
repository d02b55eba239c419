#include "Choreography.h"

#include "Places.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using media::Point;
using media::Pose;
using media::Region;

constexpr double RECORDS = 90; // a second
constexpr float OUT_OF_SIGHT = 1.16f;

struct Piece {
    double seconds;
    Region view;
};

class ChoreographyTest : public testing::TestWithParam<Piece> {
protected:
    const Region stage = media::stageIn(GetParam().view);
    const media::Score score = media::makeScore(GetParam().seconds);
    const std::vector<Pose> poses = media::choreograph(score, GetParam().view);

    double secondsAt(std::size_t record) const { return static_cast<double>(record) / RECORDS; }
};

TEST_P(ChoreographyTest, HasARecordForEachMomentAndStartsAndEndsAtHome)
{
    ASSERT_EQ(poses.size(), static_cast<std::size_t>(std::ceil(90 * GetParam().seconds) + 1));
    const double rest = GetParam().seconds < 15 ? 0.3 : 1;
    for (std::size_t i = 0; i < poses.size(); ++i) {
        if (secondsAt(i) > score.prelude && secondsAt(i) < GetParam().seconds - rest) {
            continue;
        }
        for (int k = 0; k < media::FIGURES; ++k) {
            const Point place = poses[i][static_cast<std::size_t>(k)];
            ASSERT_EQ(place.x, media::homeOf(k).x) << secondsAt(i);
            ASSERT_EQ(place.y, media::homeOf(k).y) << secondsAt(i);
        }
    }
}

TEST_P(ChoreographyTest, NeverJumpsInSight)
{
    for (std::size_t k = 0; k < media::FIGURES; ++k) {
        for (std::size_t i = 3; i < poses.size(); ++i) {
            const Point way = poses[i][k] - poses[i - 3][k];
            if (poses[i - 3][k].y > OUT_OF_SIGHT) {
                continue;
            }
            // Three records are the most that one update of the scene passes over, and the first of
            // them may be all that it shows. Straight up, as it leaves, a figure may be faster.
            const bool leaves = secondsAt(i) > score.coda;
            ASSERT_LT(media::length(way), leaves ? 0.045f : 0.012f) << secondsAt(i);
        }
    }
}

TEST_P(ChoreographyTest, StaysOnTheStageAndLeavesThroughTheTop)
{
    for (std::size_t k = 0; k < media::FIGURES; ++k) {
        bool entered = false;
        bool left = false;
        for (std::size_t i = 0; i < poses.size(); ++i) {
            const Point place = poses[i][k];
            entered = entered || place.y > stage.bottom + 0.02f;
            left = left || (entered && place.y > stage.top + 0.02f);
            if (!left) {
                ASSERT_GT(place.y, entered ? stage.bottom - 0.03f : -0.13f) << secondsAt(i);
                ASSERT_GT(place.x, stage.left - 0.02f) << secondsAt(i);
                ASSERT_LT(place.x, stage.right + 0.02f) << secondsAt(i);
            } else {
                ASSERT_GT(secondsAt(i), score.coda) << "it leaves in the coda";
            }
        }
        EXPECT_TRUE(entered);
        EXPECT_TRUE(left);
    }
}

TEST_P(ChoreographyTest, LeavesFasterThanFish)
{
    for (std::size_t k = 0; k < media::FIGURES; ++k) {
        std::size_t out = 0;
        while (out < poses.size() && poses[out][k].y < 1) {
            ++out;
        }
        ASSERT_LT(out, poses.size());
        // Over an eleventh of a second, with 40 updates in a second.
        const float speed = (poses[out][k].y - poses[out - 8][k].y) / 8 * 90 / 40;
        EXPECT_GT(speed, 0.0125f);
        EXPECT_EQ(poses[out][k].x, poses[out + 3][k].x) << "straight up";
    }
}

INSTANTIATE_TEST_SUITE_P(
    Pieces, ChoreographyTest,
    testing::Values(Piece{5, media::SQUARE_VIEW}, Piece{7.25, media::SQUARE_VIEW},
                    Piece{14.9, media::SQUARE_VIEW}, Piece{20, media::SQUARE_VIEW},
                    Piece{37, media::SQUARE_VIEW}, Piece{120, media::SQUARE_VIEW},
                    Piece{300, media::SQUARE_VIEW}, Piece{5, media::WIDE_VIEW},
                    Piece{60, media::WIDE_VIEW}, Piece{120, media::WIDE_VIEW}));

TEST(ChoreographyShortTest, TheFiguresComeIntoThePicture)
{
    for (const double seconds : {5.0, 8.0, 15.0}) {
        const auto poses = media::choreograph(media::makeScore(seconds), media::SQUARE_VIEW);
        for (const Point place : poses[poses.size() / 2]) {
            EXPECT_GT(place.y, 0.2f) << seconds;
        }
    }
}

TEST(RehearsalTest, MarksThePlacesOfEachPhrase)
{
    const media::Score score = media::makeScore(60);
    const Region stage = media::stageIn(media::SQUARE_VIEW);
    const auto poses = media::rehearse(score, media::SQUARE_VIEW);
    for (std::size_t i = 0; i < score.cues.size(); ++i) {
        const auto end = static_cast<std::size_t>((score.cues[i].start + media::PHRASE) * RECORDS);
        for (std::size_t k = 0; k < media::FIGURES; ++k) {
            EXPECT_LT(media::length(poses[end][k] - media::placesAfter(i, stage)[k]), 0.002f);
        }
    }
}

TEST(PlacesTest, AreMirroredInEveryOtherVerse)
{
    const Region stage = media::stageIn(media::SQUARE_VIEW);
    for (std::size_t phrase = 0; phrase < 8; ++phrase) {
        const auto places = media::placesAfter(phrase, stage);
        const auto mirrored = media::placesAfter(phrase + 8, stage);
        for (std::size_t k = 0; k < media::FIGURES; ++k) {
            EXPECT_NEAR(mirrored[k].x, 1 - places[2 - k].x, 1e-6f);
            EXPECT_EQ(mirrored[k].y, places[2 - k].y);
        }
    }
}

} // namespace
