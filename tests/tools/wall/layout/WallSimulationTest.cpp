// WallLayout::simulated: a wall in windows of one desktop.

#include "WallLayout.h"
#include "Walls.h"

namespace {

TEST(WallSimulationTest, WindowsStandWhereTheirTilesDoWithBezelsBetween)
{
    // Pitch 1958 and 1112, a wall of 5836 by 2192: see WallLayoutTest.
    const WallLayout wall =
        layoutOf(describeGrid(3, 2, 1920, 1080, "0.02 0.03"), "Wall Map 2 1 Display :0.1")
            .simulated(0.25);
    EXPECT_EQ(wall.width, 1459);
    EXPECT_EQ(wall.height, 548);
    EXPECT_EQ(wall.tiles[0].desktop, (PixelRect{0, 0, 480, 270}));
    EXPECT_EQ(wall.tiles[1].desktop, (PixelRect{0, 278, 480, 270}));
    // 1958 / 4 = 489.5 is rounded up, (1958 + 1920) / 4 = 969.5 too
    EXPECT_EQ(wall.tiles[3].desktop, (PixelRect{490, 278, 480, 270}));
    EXPECT_EQ(wall.tiles[5].desktop, (PixelRect{979, 278, 480, 270}));
    EXPECT_EQ(wall.tiles[5].viewport, (PixelRect{-979, 0, 1459, 548}));
    EXPECT_EQ(wall.tiles[0].viewport, (PixelRect{0, -278, 1459, 548}));
    EXPECT_EQ(wall.tiles[0].wall, (PixelRect{0, 278, 480, 270}));
    EXPECT_EQ(wall.tiles[5].drawn, (PixelRect{0, 0, 480, 270}));
    EXPECT_EQ(wall.tiles[5].display, "");
    EXPECT_EQ(wall.tiles[5].host, "h2");
}

TEST(WallSimulationTest, WithoutBezelsNoGapOpens)
{
    for (const double scale : {0.02, 0.1, 0.123, 0.3, 0.77, 1.0}) {
        const WallLayout wall = layoutOf(describeGrid(7, 1, 333, 111, "0 0")).simulated(scale);
        for (std::size_t i = 0; i + 1 < wall.tiles.size(); ++i) {
            const PixelRect& left = wall.tiles[i].desktop;
            EXPECT_EQ(left.x + left.w, wall.tiles[i + 1].desktop.x) << scale;
        }
        EXPECT_EQ(wall.tiles[6].desktop.x + wall.tiles[6].desktop.w, wall.width);
    }
}

TEST(WallSimulationTest, TilesThatOverlapStandBesideEachOther)
{
    const WallLayout wall = layoutOf(describeGrid(3, 2, 800, 600, "-0.25 -0.125")).simulated(0.5);
    EXPECT_EQ(wall.width, 1000);
    EXPECT_EQ(wall.height, 563) << "1125 / 2";
    EXPECT_EQ(wall.tiles[2].desktop, (PixelRect{400, 0, 400, 300}));
    EXPECT_EQ(wall.tiles[5].desktop, (PixelRect{800, 300, 400, 300}));
    EXPECT_EQ(wall.tiles[2].place, (PixelRect{300, 0, 400, 300}));
    EXPECT_EQ(wall.tiles[2].viewport, (PixelRect{-300, -263, 1000, 563}));
    EXPECT_EQ(wall.tiles[2].blend, (Blend{100, 100, 37, 0, 2.2f})) << "rows 263 to 300";
    EXPECT_EQ(wall.tiles[3].blend, (Blend{100, 100, 0, 37, 2.2f}));
}

TEST(WallSimulationTest, RampsOfTheSecondFileAndPartsOfWindowsAreScaled)
{
    const WallLayout wall =
        layoutOf(describe("1 1", "0 0",
                          {{"reef",
                            {{"0 0", "50 60 200 100",
                              "Cameras 1 Rectangle 0.25 0.5 0.5 0.25 Offset 0.125 -0.25"}}}}),
                 "Wall Map 0 0 Blend 10 20 30 40 2")
            .simulated(0.5);
    EXPECT_EQ(wall.tiles[0].desktop, (PixelRect{0, 0, 100, 50}));
    EXPECT_EQ(wall.tiles[0].blend, (Blend{5, 10, 15, 20, 2}));
    EXPECT_EQ(wall.tiles[0].drawn, (PixelRect{25, 25, 50, 13}));
    EXPECT_EQ(wall.tiles[0].wall, (PixelRect{13, -13, 100, 50})) << "25 / 2 away";
    EXPECT_EQ(wall.tiles[0].viewport, (PixelRect{-13, 13, 100, 50}));
}

TEST(WallSimulationTest, AFinerTileIsAsLargeAsItsPlace)
{
    const WallLayout wall = layoutOf(describe("2 1", "0 0",
                                              {{"coarse", {{"0 0", "0 0 1000 500"}}},
                                               {"fine", {{"1 0", "0 0 2000 1000"}}}}),
                                     "Wall Map 1 0 Place 1000 0 1000 500 Blend 200 0 0 0 2")
                                .simulated(0.5);
    EXPECT_EQ(wall.tiles[1].desktop, (PixelRect{500, 0, 500, 250}));
    EXPECT_EQ(wall.tiles[1].viewport, (PixelRect{-500, 0, 1000, 250}));
    EXPECT_EQ(wall.tiles[1].blend.left, 50) << "200 of 2000 pixels are 50 of 500";
}

TEST(WallSimulationTest, NoWindowIsLargerThanOneMayBe)
{
    // A window of 16384 pixels shows 65536 of the wall.
    const WallLayout wall =
        layoutOf(describe("1 1", "0 0", {{"reef", {{"0 0", "0 0 16384 4096"}}}}),
                 "Wall Map 0 0 Place 0 0 65536 16384")
            .simulated(1);
    EXPECT_EQ(wall.tiles[0].desktop, (PixelRect{0, 0, 16384, 4096}));
}

TEST(WallSimulationTest, NoTileVanishes)
{
    const WallLayout wall = layoutOf(describeGrid(3, 1, 10, 5, "0 0")).simulated(0.02);
    for (const WallTile& tile : wall.tiles) {
        EXPECT_EQ(tile.desktop.w, 1);
        EXPECT_EQ(tile.desktop.h, 1);
        EXPECT_EQ(tile.drawn, (PixelRect{0, 0, 1, 1}));
    }
    EXPECT_GE(wall.width, 1);
    EXPECT_EQ(wall.height, 1);
}

} // namespace
