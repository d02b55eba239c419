#include "Neighborhood.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

namespace {

constexpr float FLOAT_INF = std::numeric_limits<float>::infinity();
constexpr double INF = std::numeric_limits<double>::infinity();

bool isWithin(double square, float radius)
{
    return radius >= static_cast<float>(std::sqrt(square));
}

TEST(NeighborhoodTest, TheReachOfATenthIsNeitherOfTheObviousSquares)
{
    EXPECT_EQ(std::bit_cast<std::uint64_t>(largestSquareWithin(0.1f)), 0x3f847ae16b851ec7);
}

TEST(NeighborhoodTest, TheLargestSquareIsWithinTheRadiusAndTheNextOneIsNot)
{
    for (const float radius : {0.0f, 1e-45f, 1e-20f, 0.03f, 0.1f, 0.25f, 0.3f, 1.0f, 7.0f, 2e19f,
                               std::numeric_limits<float>::max()}) {
        const double square = largestSquareWithin(radius);
        EXPECT_TRUE(isWithin(square, radius)) << radius;
        EXPECT_FALSE(isWithin(std::nextafter(square, INF), radius)) << radius;
    }
}

TEST(NeighborhoodTest, AnInfiniteRadiusReachesEverything)
{
    EXPECT_EQ(largestSquareWithin(FLOAT_INF), INF);
}

TEST(NeighborhoodTest, NothingIsWithinARadiusBelowZeroOrOneThatIsNoNumber)
{
    EXPECT_EQ(largestSquareWithin(-1e-45f), -1);
    EXPECT_EQ(largestSquareWithin(-FLOAT_INF), -1);
    EXPECT_EQ(largestSquareWithin(std::numeric_limits<float>::quiet_NaN()), -1);
}

TEST(NeighborhoodTest, OfTwoSquaresWithTheSameRootTheEarlierIsTheClosest)
{
    const double square = 0.01;
    const double less = std::nextafter(square, 0.0);
    ASSERT_EQ(static_cast<float>(std::sqrt(square)), static_cast<float>(std::sqrt(less)));
    Closest closest;
    EXPECT_TRUE(closest.isNearer(square));
    EXPECT_FALSE(closest.isNearer(less));
    EXPECT_FALSE(closest.isNearer(square));
    EXPECT_EQ(closest.distance(), 0.1f);
    EXPECT_TRUE(closest.isNearer(0.009));
    EXPECT_FALSE(closest.isNearer(0.01));
}

TEST(NeighborhoodTest, NothingAtAHundredThousandOrBeyondIsClosest)
{
    Closest closest;
    EXPECT_FALSE(closest.isNearer(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_FALSE(closest.isNearer(INF));
    EXPECT_FALSE(closest.isNearer(1e10));
    EXPECT_EQ(closest.distance(), 100000.0f);
    EXPECT_TRUE(closest.isNearer(0.999e10));
}

} // namespace
