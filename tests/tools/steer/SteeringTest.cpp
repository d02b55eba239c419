#include "Steering.h"

#include "TestRecording.h"
#include "WaterView.h"

#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <random>

namespace {

using testing::DoubleNear;
using testing::Optional;

constexpr float IDENTITY[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
/// Brings the unit square exactly over the picture.
const float SIDE = 2 / std::sqrt(3.0F);
const float WATER[16] = {SIDE, 0, 0, 0, 0, SIDE, 0, 0, 0, 0, 1, 0, -SIDE / 2, -SIDE / 2, 0, 1};

MATCHER_P2(IsAt, x, y, "")
{
    return std::abs(arg.x - x) < 1e-6 && std::abs(arg.y - y) < 1e-6;
}

/// Figures that rest, figure 1 at (0.2, 0.5).
class SteeringTest : public testing::Test {
protected:
    static constexpr int STEPS = 400;

    SteeringTest() : SteeringTest([](int, int) { return Vec3(-0.35F / 0.45F, 0.6F / 0.45F, 0); }) {}

    explicit SteeringTest(const std::function<Vec3(int, int)>& positionOf)
        : played(recordingOf(STEPS, positionOf)), recording(*played)
    {
    }

    Poses next() { return steering.next(recording, step++ % STEPS, view); }

    std::unique_ptr<MoCap> played;
    SteeredRecording recording;
    WaterView view{IDENTITY, IDENTITY, WATER, 1};
    Steering steering;
    int step = 0;
};

/// Figure 1 goes to the right by 0.004 in each step.
class MovingSteeringTest : public SteeringTest {
protected:
    MovingSteeringTest()
        : SteeringTest([](int, int step) {
              return Vec3((0.004F * static_cast<float>(step) - 0.35F) / 0.45F, 0.6F / 0.45F, 0);
          })
    {
    }
};

} // namespace

TEST_F(SteeringTest, FiguresThatNobodyLeadsAreAsRecorded)
{
    EXPECT_EQ(next(), Poses());
    EXPECT_EQ(next(), Poses());
    EXPECT_FALSE(steering.isLed(1));
}

TEST_F(SteeringTest, TheWayOfAFigureIsTheOneByHand)
{
    next();
    steering.lead(1, 0.3, 0.5);
    EXPECT_TRUE(steering.isLed(1));
    // Half of the way that is left, 0.012 at most, and 0.006 from standing.
    for (const double x : {0.206, 0.218, 0.230, 0.242, 0.254, 0.266, 0.278, 0.289, 0.2945, 0.29725,
                           0.298625, 0.2993125, 0.29965625, 0.3, 0.3}) {
        const Poses poses = next();
        EXPECT_THAT(poses[1], Optional(IsAt(x, 0.5)));
        EXPECT_EQ(poses[0], std::nullopt);
        EXPECT_EQ(poses[2], std::nullopt);
    }
}

TEST_F(SteeringTest, AMessageMovesItsFigureInTheNextUpdate)
{
    next();
    steering.lead(2, 0.9, 0.9);
    EXPECT_NE(next()[2], std::nullopt);
}

TEST_F(SteeringTest, AFigureGoesBackAfterTwoSecondsWithoutAMessage)
{
    next();
    steering.lead(1, 0.3, 0.5);
    for (int i = 0; i < 80; ++i) {
        EXPECT_NE(next()[1], std::nullopt);
        EXPECT_TRUE(steering.isLed(1));
    }
    EXPECT_THAT(next()[1], Optional(IsAt(0.294, 0.5)));
    EXPECT_FALSE(steering.isLed(1));
    for (int i = 0; i < 13; ++i) {
        next();
    }
    EXPECT_EQ(next(), Poses()) << "as recorded again";
}

TEST_F(SteeringTest, EachMessageKeepsAFigureForTwoSecondsMore)
{
    for (int i = 0; i < 5; ++i) {
        steering.lead(1, 0.3, 0.5);
        for (int k = 0; k < 80; ++k) {
            next();
            ASSERT_TRUE(steering.isLed(1));
        }
    }
}

TEST_F(MovingSteeringTest, AReleasedFigureCatchesUpWithItsRecording)
{
    next();
    steering.lead(1, 0.05, 0.9);
    for (int i = 0; i < 50; ++i) {
        next();
    }
    steering.release(1);
    EXPECT_FALSE(steering.isLed(1));
    int updates = 0;
    Place before = *next()[1];
    for (Poses poses = next(); poses[1]; poses = next()) {
        EXPECT_LE(std::hypot(poses[1]->x - before.x, poses[1]->y - before.y), 0.0120001);
        before = *poses[1];
        ASSERT_LT(++updates, 200);
    }
    // It ends beside its recording, and goes on with it.
    const Vec3 recorded = recording.placeAt(1, step - 1);
    EXPECT_LE(std::hypot(static_cast<double>(recorded.x) - before.x,
                         static_cast<double>(recorded.y) - before.y),
              0.0120001);
    EXPECT_GT(updates, 20);
}

TEST_F(MovingSteeringTest, NoMessagesMakeAFigureFasterThanItMayBe)
{
    std::mt19937 numbers(5);
    std::uniform_real_distribution<double> anywhere(0, 1);
    std::array<Place, FIGURES> before;
    next();
    for (int k = 0; k < 3; ++k) {
        steering.lead(k, 0.5, 0.5);
    }
    Poses poses = next();
    for (std::size_t k = 0; k < FIGURES; ++k) {
        before[k] = *poses[k];
    }
    for (int i = 0; i < 2000; ++i) {
        for (int k = 0; k < 3; ++k) {
            if (numbers() % 4 != 0) {
                steering.lead(k, anywhere(numbers), anywhere(numbers));
            }
        }
        poses = next();
        for (std::size_t k = 0; k < FIGURES; ++k) {
            ASSERT_LE(std::hypot(poses[k]->x - before[k].x, poses[k]->y - before[k].y), 0.0120001);
            before[k] = *poses[k];
        }
    }
}

TEST_F(SteeringTest, WhatIsNoPlaceOfThePictureIsNoMessage)
{
    next();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinite = std::numeric_limits<double>::infinity();
    for (const double bad : {nan, infinite, -infinite, -0.001, 1.001}) {
        steering.lead(1, bad, 0.5);
        steering.lead(1, 0.5, bad);
    }
    steering.lead(-1, 0.5, 0.5);
    steering.lead(3, 0.5, 0.5);
    steering.release(3);
    EXPECT_EQ(next(), Poses());
}

TEST_F(SteeringTest, ARecordThatIsNowhereKeepsAReturningFigureWhereTheOneBeforeWas)
{
    next();
    steering.lead(1, 0.3, 0.5);
    next();
    const auto nowhere = recordingOf(
        1, [](int, int) { return Vec3(std::numeric_limits<float>::quiet_NaN(), 1e30F, 0); });
    const SteeredRecording lost(*nowhere);
    steering.release(1);
    for (int i = 0; i < 3; ++i) {
        const Poses poses = steering.next(lost, 0, view);
        if (poses[1]) {
            EXPECT_THAT(poses[1]->x, DoubleNear(0.2, 0.02));
        }
    }
}

TEST_F(SteeringTest, AFigureGoesToWhereItsPlaceIsSeenNow)
{
    next();
    steering.lead(1, 0.3, 0.5);
    for (int i = 0; i < 30; ++i) {
        next();
    }
    // The water lies twice as large around the middle of the picture.
    const float root[16] = {2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    view = WaterView(root, IDENTITY, WATER, 1);
    for (int i = 0; i < 30; ++i) {
        next();
    }
    EXPECT_THAT(next()[1], Optional(IsAt(0.4, 0.5)));
}

TEST_F(SteeringTest, AFigureWhosePlaceIsNotToBeSeenStays)
{
    next();
    steering.lead(1, 0.3, 0.5);
    for (int i = 0; i < 30; ++i) {
        next();
    }
    const float edgeOn[16] = {0, 0, -1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1};
    view = WaterView(IDENTITY, edgeOn, WATER, 1);
    EXPECT_THAT(next()[1], Optional(IsAt(0.3, 0.5)));
}
