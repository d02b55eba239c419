#include "Ramp.h"

#include <cmath>
#include <gmock/gmock.h>

namespace {

using testing::DoubleNear;
using testing::Each;
using testing::ElementsAre;

WallTile tileOf(int width, int height, const Blend& blend)
{
    WallTile tile;
    tile.desktop = {0, 0, width, height};
    tile.blend = blend;
    return tile;
}

TEST(RampTest, ARampIsTwoParabolas)
{
    // The middles of four pixels are 1/8, 3/8, 5/8 and 7/8: 2/64, 18/64, 1 - 18/64, 1 - 2/64.
    EXPECT_EQ(Ramp::share(0, 4), 0.03125);
    EXPECT_EQ(Ramp::share(1, 4), 0.28125);
    EXPECT_EQ(Ramp::share(2, 4), 0.71875);
    EXPECT_EQ(Ramp::share(3, 4), 0.96875);
    EXPECT_EQ(Ramp::share(4, 4), 1);
    EXPECT_EQ(Ramp::share(0, 1), 0.5);
    EXPECT_EQ(Ramp::share(0, 0), 1) << "no ramp";
}

TEST(RampTest, TwoRampsAddUpToAllLight)
{
    for (const int width : {1, 2, 3, 7, 96, 1000}) {
        for (int pixel = 0; pixel < width; ++pixel) {
            EXPECT_THAT(Ramp::share(pixel, width) + Ramp::share(width - 1 - pixel, width),
                        DoubleNear(1, 1e-12));
        }
    }
}

TEST(RampTest, AProjectorGetsTheRootOfTheLight)
{
    EXPECT_EQ(Ramp::valueFor(0.25, 2), 0.5);
    EXPECT_EQ(Ramp::valueFor(0.25, 1), 0.25);
    EXPECT_EQ(Ramp::valueFor(1, 2.2), 1);
    EXPECT_EQ(Ramp::valueFor(0, 2.2), 0);
}

TEST(RampTest, FactorsAreThoseOfASmallTile)
{
    // Columns 1/2, 1 and 1/8, 7/8; rows 1, 1/2; gamma 1: 255 times the product.
    const Ramp::Factors factors = Ramp::factorsOf(tileOf(100, 50, {1, 2, 0, 1, 1}));
    EXPECT_EQ(factors.columns, 4);
    EXPECT_EQ(factors.rows, 2);
    EXPECT_THAT(factors.rgb,
                ElementsAre(128, 128, 128, 255, 255, 255, 223, 223, 223, 32, 32, 32, // the even row
                            64, 64, 64, 128, 128, 128, 112, 112, 112, 16, 16, 16));
    EXPECT_TRUE(factors.changeSomething());
}

TEST(RampTest, AGainIsLight)
{
    WallTile tile = tileOf(10, 10, {0, 0, 0, 0, 2});
    EXPECT_FALSE(Ramp::factorsOf(tile).changeSomething());
    tile.gain = {1, 0.25F, 0};
    const Ramp::Factors factors = Ramp::factorsOf(tile);
    EXPECT_THAT(factors.rgb, ElementsAre(255, 128, 0))
        << "a quarter of the light is half the value";
    EXPECT_TRUE(factors.changeSomething());
}

TEST(RampTest, RampsMayMeetAndAreCutWhereTheyWouldCross)
{
    const Ramp::Factors met = Ramp::factorsOf(tileOf(5, 4, {2, 3, 4, 0, 1}));
    EXPECT_EQ(met.columns, 5) << "there is no even column";
    EXPECT_EQ(met.rows, 4);
    const Ramp::Factors crossed = Ramp::factorsOf(tileOf(5, 4, {3, 3, 9, 9, 1}));
    EXPECT_EQ(crossed.left, 3);
    EXPECT_EQ(crossed.right, 2);
    EXPECT_EQ(crossed.bottom, 4);
    EXPECT_EQ(crossed.top, 0);
}

} // namespace
