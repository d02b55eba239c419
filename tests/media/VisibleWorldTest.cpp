#include "VisibleWorld.h"

#include <gtest/gtest.h>

namespace {

// Worked out by hand: tan 30 degrees / 1.2 = 0.481125; by 1.25 cubed = 0.246336; that by 16 / 9 =
// 0.437931.

TEST(VisibleWorldTest, IsNearlyTheWholePictureInTheSquareWindowAtTheStart)
{
    EXPECT_NEAR(media::SQUARE_VIEW.left, 0.018875, 1e-6);
    EXPECT_NEAR(media::SQUARE_VIEW.right, 0.981125, 1e-6);
    EXPECT_NEAR(media::SQUARE_VIEW.bottom, 0.018875, 1e-6);
    EXPECT_NEAR(media::SQUARE_VIEW.top, 0.981125, 1e-6);
}

TEST(VisibleWorldTest, IsABandWithinThePictureInAWideWindowAfterThreeSteps)
{
    EXPECT_NEAR(media::WIDE_VIEW.left, 0.062069, 1e-6);
    EXPECT_NEAR(media::WIDE_VIEW.right, 0.937931, 1e-6);
    EXPECT_NEAR(media::WIDE_VIEW.bottom, 0.253664, 1e-6);
    EXPECT_NEAR(media::WIDE_VIEW.top, 0.746336, 1e-6);
}

TEST(VisibleWorldTest, ReachesBesideThePictureAfterTwo)
{
    const media::Region view = media::visibleWorld(16.0f / 9, 2);
    EXPECT_NEAR(view.left, -0.047414, 1e-6);
    EXPECT_NEAR(view.top, 0.807920, 1e-6);
}

} // namespace
