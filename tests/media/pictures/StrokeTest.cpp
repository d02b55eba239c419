#include "Stroke.h"

#include <cmath>
#include <gtest/gtest.h>
#include <set>

namespace {

using media::Stroke;
using media::Touch;

TEST(StrokeTest, CoversABarWithRoundEnds)
{
    Stroke stroke;
    stroke.add({20, 30}, 5);
    stroke.add({60, 30}, 5);
    double area = 0;
    std::set<std::pair<int, int>> pixels;
    for (const Touch& touch : stroke.touch(100, 100)) {
        area += static_cast<double>(touch.coverage);
        EXPECT_TRUE(pixels.emplace(touch.x, touch.y).second) << "each pixel comes once";
    }
    EXPECT_NEAR(area, 40 * 10 + 3.14159 * 25, 3);
}

TEST(StrokeTest, TellsWhereAPixelLies)
{
    Stroke stroke;
    stroke.add({10.5f, 50.5f}, 8);
    stroke.add({50.5f, 50.5f}, 8);
    stroke.add({90.5f, 50.5f}, 8);
    for (const Touch& touch : stroke.touch(100, 100)) {
        if (touch.x == 70 && touch.y == 54) {
            EXPECT_NEAR(touch.along, 0.75f, 1e-4f);
            // The walker goes to the right and y points down, so down is to the right.
            EXPECT_NEAR(touch.across, 0.5f, 1e-4f);
            EXPECT_EQ(touch.coverage, 1);
        }
        if (touch.x == 30 && touch.y == 46) {
            EXPECT_NEAR(touch.along, 0.25f, 1e-4f);
            EXPECT_NEAR(touch.across, -0.5f, 1e-4f);
        }
        EXPECT_LE(std::abs(touch.across), 1);
    }
}

TEST(StrokeTest, IsCutOffAtTheRimOfTheCanvas)
{
    Stroke stroke;
    stroke.add({-50, -50}, 10);
    stroke.add({50, 50}, 10);
    for (const Touch& touch : stroke.touch(20, 10)) {
        EXPECT_TRUE(touch.x >= 0 && touch.x < 20 && touch.y >= 0 && touch.y < 10);
    }
    Stroke outside;
    outside.add({200, 200}, 5);
    outside.add({300, 200}, 5);
    EXPECT_TRUE(outside.touch(20, 10).empty());
}

TEST(StrokeTest, OfLessThanTwoPointsIsNothing)
{
    Stroke stroke;
    EXPECT_TRUE(stroke.touch(10, 10).empty());
    stroke.add({5, 5}, 3);
    EXPECT_TRUE(stroke.touch(10, 10).empty());
}

TEST(StrokeTest, BetweenEqualPointsIsADot)
{
    Stroke stroke;
    stroke.add({10, 10}, 4);
    stroke.add({10, 10}, 4);
    double area = 0;
    for (const Touch& touch : stroke.touch(20, 20)) {
        area += static_cast<double>(touch.coverage);
        EXPECT_FALSE(std::isnan(touch.across));
    }
    EXPECT_NEAR(area, 3.14159 * 16, 2);
}

} // namespace
