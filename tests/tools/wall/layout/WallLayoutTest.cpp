#include "WallLayout.h"

#include "Walls.h"

#include <gmock/gmock.h>
#include <limits>

namespace {

using testing::HasSubstr;

/// A wall of one window of 200 by 100 pixels.
std::string oneWindow(const std::string& cameras)
{
    return describe("1 1", "0 0", {{"reef", {{"0 0", "0 0 200 100", cameras}}}});
}

TEST(WallLayoutTest, FourTilesWithoutBezels)
{
    const WallLayout wall = layoutOf(describeGrid(2, 2, 370, 300, "0 0"));
    EXPECT_EQ(wall.columns, 2);
    EXPECT_EQ(wall.rows, 2);
    EXPECT_EQ(wall.width, 740);
    EXPECT_EQ(wall.height, 600);
    ASSERT_EQ(wall.tiles.size(), 4u);
    // Ranks go down the first column, then the second. GL's origin is below.
    const PixelRect places[] = {
        {0, 0, 370, 300}, {0, 300, 370, 300}, {370, 0, 370, 300}, {370, 300, 370, 300}};
    const PixelRect onWall[] = {
        {0, 300, 370, 300}, {0, 0, 370, 300}, {370, 300, 370, 300}, {370, 0, 370, 300}};
    const PixelRect viewports[] = {
        {0, -300, 740, 600}, {0, 0, 740, 600}, {-370, -300, 740, 600}, {-370, 0, 740, 600}};
    for (int rank = 0; rank < 4; ++rank) {
        const WallTile& tile = wall.tiles[static_cast<std::size_t>(rank)];
        SCOPED_TRACE(rank);
        EXPECT_EQ(tile.rank, rank);
        EXPECT_EQ(tile.host, rank < 2 ? "h0" : "h1");
        EXPECT_EQ(tile.window, rank % 2);
        EXPECT_EQ(tile.column, rank / 2);
        EXPECT_EQ(tile.row, rank % 2);
        EXPECT_EQ(tile.place, places[rank]);
        EXPECT_EQ(tile.wall, onWall[rank]);
        EXPECT_EQ(tile.viewport, viewports[rank]);
        EXPECT_EQ(tile.desktop, (PixelRect{0, rank % 2 * 300, 370, 300}));
        EXPECT_EQ(tile.drawn, (PixelRect{0, 0, 370, 300}));
        EXPECT_EQ(tile.blend, Blend());
        EXPECT_EQ(tile.display, "");
    }
    EXPECT_EQ(wall.rate, 40);
    EXPECT_FALSE(wall.seed);
    EXPECT_EQ(wall.fit, Fit::contain);
    EXPECT_EQ(wall.media, "");
}

TEST(WallLayoutTest, SixScreensWithBezels)
{
    // 1920 * 1.02 = 1958.4 and 1080 * 1.03 = 1112.4: gaps of 38 and 32 pixels.
    const WallLayout wall = layoutOf(describeGrid(3, 2, 1920, 1080, "0.02 0.03"));
    EXPECT_EQ(wall.pitch, (std::array{1958, 1112}));
    EXPECT_EQ(wall.width, 5836);
    EXPECT_EQ(wall.height, 2192);
    ASSERT_EQ(wall.tiles.size(), 6u);
    EXPECT_EQ(wall.tiles[0].viewport, (PixelRect{0, -1112, 5836, 2192}));
    EXPECT_EQ(wall.tiles[1].viewport, (PixelRect{0, 0, 5836, 2192}));
    EXPECT_EQ(wall.tiles[3].viewport, (PixelRect{-1958, 0, 5836, 2192}));
    EXPECT_EQ(wall.tiles[4].viewport, (PixelRect{-3916, -1112, 5836, 2192}));
    EXPECT_EQ(wall.tiles[4].place, (PixelRect{3916, 0, 1920, 1080}));
    EXPECT_EQ(wall.tiles[5].place, (PixelRect{3916, 1112, 1920, 1080}));
    for (const WallTile& tile : wall.tiles) {
        EXPECT_EQ(tile.blend, Blend());
    }
}

TEST(WallLayoutTest, HalfAPixelOfABezelIsRoundedUp)
{
    // 100 * 1.125 = 112.5, and 0.125 is exact.
    EXPECT_EQ(layoutOf(describeGrid(2, 1, 100, 100, "0.125 0")).pitch, (std::array{113, 100}));
}

TEST(WallLayoutTest, ProjectorsOverlapAndGetRamps)
{
    // A quarter of 800 is 200, an eighth of 600 is 75.
    const WallLayout wall = layoutOf(describeGrid(3, 2, 800, 600, "-0.25 -0.125"));
    EXPECT_EQ(wall.pitch, (std::array{600, 525}));
    EXPECT_EQ(wall.width, 2000);
    EXPECT_EQ(wall.height, 1125);
    EXPECT_EQ(wall.tiles[2].viewport, (PixelRect{-600, -525, 2000, 1125}));
    EXPECT_EQ(wall.tiles[0].blend, (Blend{0, 200, 75, 0, 2.2f}));
    EXPECT_EQ(wall.tiles[2].blend, (Blend{200, 200, 75, 0, 2.2f}));
    EXPECT_EQ(wall.tiles[3].blend, (Blend{200, 200, 0, 75, 2.2f}));
    EXPECT_EQ(wall.tiles[5].blend, (Blend{200, 0, 0, 75, 2.2f}));
}

TEST(WallLayoutTest, AMissingNeighborNeedsNoRamp)
{
    const WallLayout wall = layoutOf(describe(
        "3 1", "-0.1 0", {{"a", {{"0 0", "0 0 100 50"}}}, {"c", {{"2 0", "0 0 100 50"}}}}));
    EXPECT_EQ(wall.width, 280) << "the place of the missing tile counts";
    EXPECT_EQ(wall.tiles[1].viewport, (PixelRect{-180, 0, 280, 50}));
    EXPECT_EQ(wall.tiles[0].blend, Blend());
    EXPECT_EQ(wall.tiles[1].blend, Blend());
}

TEST(WallLayoutTest, RampsAndOtherSettingsOfTheSecondFile)
{
    const WallLayout wall = layoutOf(describeGrid(2, 1, 100, 50, "-0.25 0"),
                                     "Wall Rate 30 Seed 4294967295 Fit cover Media /srv/reef\n"
                                     "Map 1 0 Blend 20 1 2 3 1.5 Gain 1 0.5 0.25 Display :0.1");
    EXPECT_EQ(wall.rate, 30);
    EXPECT_EQ(wall.seed, 4294967295u);
    EXPECT_EQ(wall.fit, Fit::cover);
    EXPECT_EQ(wall.media, "/srv/reef");
    EXPECT_EQ(wall.tiles[0].blend, (Blend{0, 25, 0, 0, 2.2f}));
    EXPECT_EQ(wall.tiles[1].blend, (Blend{20, 1, 2, 3, 1.5f}));
    EXPECT_EQ(wall.tiles[1].gain, (std::array{1.0f, 0.5f, 0.25f}));
    EXPECT_EQ(wall.tiles[1].display, ":0.1");
    EXPECT_EQ(wall.tiles[0].display, "");
}

TEST(WallLayoutTest, UnequalTilesHaveAPlace)
{
    const std::string description =
        describe("2 1", "0 0",
                 {{"large", {{"0 0", "0 0 1920 1080"}}}, {"small", {{"1 0", "0 0 1280 720"}}}});
    EXPECT_EQ(problemOf(description),
              "reef.cfg:14: host small, window 0: Location: a window of 1280 x 720 pixels beside "
              "those of 1920 x 1080: tiles of several sizes need a Place in reef.cfg.more");
    // The small one on the right, its middle at that of the large one: (1080 - 720) / 2 = 180.
    // The wall ends with it, not with the second column of a grid of large tiles.
    const WallLayout wall = layoutOf(description, "Wall Map 1 0 Place 1940 180 1280 720");
    EXPECT_EQ(wall.width, 3220);
    EXPECT_EQ(wall.height, 1080);
    EXPECT_EQ(wall.tiles[0].viewport, (PixelRect{0, 0, 3220, 1080}));
    EXPECT_EQ(wall.tiles[1].wall, (PixelRect{1940, 180, 1280, 720}));
    EXPECT_EQ(wall.tiles[1].viewport, (PixelRect{-1940, -180, 3220, 1080}));
    EXPECT_EQ(wall.tiles[1].blend, Blend());
}

TEST(WallLayoutTest, AFinerTileShowsItsPlaceWithItsOwnPixels)
{
    // Beside a screen of 1000 by 500 one of the same size with twice the pixels.
    const WallLayout wall = layoutOf(
        describe("2 1", "0 0",
                 {{"coarse", {{"0 0", "0 0 1000 500"}}}, {"fine", {{"1 0", "0 0 2000 1000"}}}}),
        "Wall Map 1 0 Place 1000 0 1000 500");
    EXPECT_EQ(wall.width, 2000);
    EXPECT_EQ(wall.height, 500);
    EXPECT_EQ(wall.tiles[1].wall, (PixelRect{1000, 0, 1000, 500}));
    EXPECT_EQ(wall.tiles[1].viewport, (PixelRect{-2000, 0, 4000, 1000}));
}

TEST(WallLayoutTest, AnOffsetCorrectsThePlace)
{
    // An eighth of 200 to the right is 25, a quarter of 100 down is 25.
    const WallLayout wall = layoutOf(oneWindow("Cameras 1 Rectangle 0 0 1 1 Offset 0.125 -0.25"));
    EXPECT_EQ(wall.width, 200);
    EXPECT_EQ(wall.height, 100);
    EXPECT_EQ(wall.tiles[0].place, (PixelRect{0, 0, 200, 100}));
    EXPECT_EQ(wall.tiles[0].wall, (PixelRect{25, -25, 200, 100}));
    EXPECT_EQ(wall.tiles[0].viewport, (PixelRect{-25, 25, 200, 100}));
}

TEST(WallLayoutTest, ARectangleIsAPartOfTheWindow)
{
    const WallLayout wall = layoutOf(oneWindow("Cameras 1 Rectangle 0.25 0.5 0.5 0.25 Offset 0 0"));
    EXPECT_EQ(wall.tiles[0].drawn, (PixelRect{50, 50, 100, 25}));
    EXPECT_EQ(wall.tiles[0].viewport, (PixelRect{0, 0, 200, 100})) << "it cuts, and moves nothing";
}

TEST(WallLayoutTest, CamerasThatFillTheirWindowAreOne)
{
    for (const char* cameras :
         {"Cameras 2 Rectangle 0 0 0.5 1 Offset 0 0 Rectangle 0.5 0 0.5 1 Offset 0 0",
          "Cameras 3 Rectangle 0 0 0.333 1 Offset 0 0 Rectangle 0.333 0 0.333 1 Offset 0 0 "
          "Rectangle 0.666 0 0.334 1 Offset 0 0",
          "Cameras 3 Rectangle 0 0.5 1 0.5 Offset 0 0 Rectangle 0 0 0.3 0.5 Offset 0 0 "
          "Rectangle 0.25 0 0.75 0.6 Offset 0 0"}) {
        EXPECT_EQ(layoutOf(oneWindow(cameras)).tiles[0].drawn, (PixelRect{0, 0, 200, 100}))
            << cameras;
    }
    const WallLayout moved = layoutOf(oneWindow("Cameras 2 Rectangle 0 0 0.5 1 Offset 0.5 0 "
                                                "Rectangle 0.5 0 0.5 1 Offset 0.5 0"));
    EXPECT_EQ(moved.tiles[0].viewport, (PixelRect{-100, 0, 200, 100}));
}

TEST(WallLayoutTest, OtherCamerasAreRefused)
{
    std::string seventeen = "Cameras 17";
    for (int n = 0; n < 17; ++n) {
        seventeen += " Rectangle 0 0 1 1 Offset 0 0";
    }
    const std::string filled = "several cameras have to fill their window together";
    const std::string fractions = "fractions of the window, x y width height, within 0 to 1";
    for (const auto& [cameras, message] : std::vector<std::pair<std::string, std::string>>{
             {"Cameras 2 Rectangle 0 0 0.5 1 Offset 0 0 Rectangle 0.5 0 0.5 1 Offset 0 0.1",
              "cameras with an Offset of their own need a window of their own"},
             {"Cameras 2 Rectangle 0 0 0.5 1 Offset 0 0 Rectangle 0.5 0 0.49 1 Offset 0 0", filled},
             {"Cameras 2 Rectangle 0 0 0.49 1 Offset 0 0 Rectangle 0.5 0 0.5 1 Offset 0 0", filled},
             {"Cameras 2 Rectangle 0 0 1 0.5 Offset 0 0 Rectangle 0 0.5 0.9 0.5 Offset 0 0",
              filled},
             {"Cameras 1 Rectangle 0 0 1.1 1 Offset 0 0", "Rectangle 0 0 1.1 1: " + fractions},
             {"Cameras 1 Rectangle -0.1 0 1 1 Offset 0 0", "Rectangle -0.1 0 1 1: " + fractions},
             {"Cameras 1 Rectangle 0 0.5 1 0.6 Offset 0 0", "Rectangle 0 0.5 1 0.6: " + fractions},
             {"Cameras 1 Rectangle 0 0 0 1 Offset 0 0", "Rectangle 0 0 0 1: " + fractions},
             {"Cameras 1 Rectangle 0 0 1 -1 Offset 0 0", "Rectangle 0 0 1 -1: " + fractions},
             {"Cameras 1 Rectangle 0 0 1 0.001 Offset 0 0",
              "Rectangle 0 0 1 0.001: less than a pixel of the window"},
             {"Cameras 1 Rectangle 0 0 1 1 Offset 0 -1.5",
              "Offset 0 -1.5: fractions of the window by which its place is corrected, -1 to 1, "
              "normally 0 0"},
             {seventeen, "there are more than 16 cameras"}}) {
        EXPECT_EQ(problemOf(oneWindow(cameras)), "reef.cfg:8: host reef, window 0: " + message)
            << cameras;
    }
}

TEST(WallLayoutTest, TheFitScalesThePictureWhereTheCameraWouldCutOrLeaveRoom)
{
    WallLayout wall;
    wall.width = 3000;
    wall.height = 1000;
    EXPECT_EQ(wall.projectionScale(), 1) << "the height is seen whole, and more at the sides";
    wall.fit = Fit::cover;
    EXPECT_EQ(wall.projectionScale(), 3) << "the width is filled, and a third of the height seen";
    wall.width = 1000;
    wall.height = 2000;
    EXPECT_EQ(wall.projectionScale(), 1) << "the height is filled";
    wall.fit = Fit::contain;
    EXPECT_EQ(wall.projectionScale(), 0.5f) << "the width is seen whole, and more above and below";
    wall.height = 1000;
    EXPECT_EQ(wall.projectionScale(), 1);
}

TEST(WallLayoutTest, WhatMakesNoSenseIsRefusedWithItsLine)
{
    const std::vector<HostText> one = {{"reef", {{"0 0", "0 0 200 100"}}}};
    const auto window = [](const std::string& map, const std::string& location) {
        return describe("2 1", "0 0", {{"reef", {{map, location}}}});
    };
    for (const auto& [description, message] : std::vector<std::pair<std::string, std::string>>{
             {describe("0 1", "0 0", one),
              ": TileMap 0 1: a wall has 1 to 64 columns and 1 to 64 rows"},
             {describe("1 65", "0 0", one),
              ": TileMap 1 65: a wall has 1 to 64 columns and 1 to 64 rows"},
             {describe("1 1", "0 -0.51", one),
              ": Mullions 0 -0.51: a gap is at most 10 tiles wide, and tiles overlap by at most "
              "half: -0.5"},
             {describe("1 1", "11 0", one),
              ": Mullions 11 0: a gap is at most 10 tiles wide, and tiles overlap by at most half: "
              "-0.5"},
             {describe("1 1", "0 0", {}), ": the wall has no window"},
             {describe("1 1", "0 0", {{"reef", {}}}), ": the wall has no window"},
             {window("2 0", "0 0 200 100"),
              ":8: host reef, window 0: Map 2 0 is outside of the grid: TileMap 2 1 has columns 0 "
              "to 1 and rows 0 to 0"},
             {window("0 -1", "0 0 200 100"),
              ":8: host reef, window 0: Map 0 -1 is outside of the grid: TileMap 2 1 has columns 0 "
              "to 1 and rows 0 to 0"},
             {window("0 0", "0 0 0 100"),
              ":8: host reef, window 0: Location: a window of 0 x 100 pixels; each side has 1 to "
              "16384"},
             {window("0 0", "0 0 100 16385"),
              ":8: host reef, window 0: Location: a window of 100 x 16385 pixels; each side has 1 "
              "to 16384"},
             {window("0 0", "32768 0 100 100"),
              ":8: host reef, window 0: Location: there is no place 32768 0 on a desktop"},
             {window("0 0", "0 -2147483648 100 100"),
              ":8: host reef, window 0: Location: there is no place 0 -2147483648 on a desktop"},
             {describe(
                  "2 1", "0 0",
                  {{"a", {{"1 0", "0 0 9 9"}}}, {"b", {{"0 0", "0 0 9 9"}, {"1 0", "0 0 9 9"}}}}),
              ":17: host b, window 1: Map 1 0 is that of another window, of host a"},
             {describe("2 1", "0 0", {{"a", {{"1 0", "0 0 9 9"}}}, {"a", {{"0 0", "0 0 9 9"}}}}),
              ": Hostname a stands twice: one entry lists all windows of a host"},
             {describe("64 1", "9.9 0", {{"a", {{"1 0", "0 0 16384 9"}}}}),
              ": the wall has 11267302 x 9 pixels; each side has at most 1048576"}}) {
        EXPECT_EQ(problemOf(description), "reef.cfg" + message);
    }
}

TEST(WallLayoutTest, HostNamesHoldNothingThatAnotherProgramMistakes)
{
    const auto named = [](const std::string& name) {
        return problemOf(describe("1 1", "0 0", {{name, {{"0 0", "0 0 9 9"}}}}));
    };
    for (const char* name : {"a", "Reef-2", "10.0.0.7", "reef_left.museum.example", "0"}) {
        EXPECT_EQ(named(name), "") << name;
    }
    for (const char* name :
         {"-x", "--mca", ".reef", "_reef", "a:2", "a,b", "a;b", "a$b", "u@a", "a/b", "[::1]",
          "r\x1b"
          "eef",
          "r\xc3\xa4", "*", "a=b", "a\"b", "a'b"}) {
        EXPECT_THAT(named(name), HasSubstr("starts with a letter or digit")) << name;
        EXPECT_EQ(named(name).find('\x1b'), std::string::npos);
    }
}

TEST(WallLayoutTest, AWallHasAtMost1024Windows)
{
    std::vector<HostText> hosts = {{"reef", {}}};
    for (int n = 0; n < 1025; ++n) {
        hosts[0].windows.push_back(
            {std::to_string(n % 64) + " " + std::to_string(n / 64), "0 0 9 9"});
    }
    EXPECT_EQ(problemOf(describe("64 64", "0 0", hosts)),
              "reef.cfg: there are more than 1024 windows");
    hosts[0].windows.pop_back();
    EXPECT_EQ(layoutOf(describe("64 64", "0 0", hosts)).tiles.size(), 1024u);
}

TEST(WallLayoutTest, WhatMakesNoSenseInTheSecondFileIsRefusedWithItsLine)
{
    const std::string description = oneWindow("Cameras 0");
    for (const auto& [more, message] : std::vector<std::pair<std::string, std::string>>{
             {"Wall\n\nMap 1 0", "3: no window has Map 1 0"},
             {"Wall\nMap 0 0\nBlend 100 101 0 0 2.2",
              "2: Blend: the ramps are wider than the window of 200 x 100 pixels"},
             {"Wall\nMap 0 0\nBlend 0 0 50 51 2.2",
              "2: Blend: the ramps are wider than the window of 200 x 100 pixels"},
             {"Wall\nMap 0 0\nPlace 0 0 12 100",
              "2: Place: a window of 200 x 100 pixels cannot show 12 x 100 of the wall: more than "
              "16 times too many or too few"},
             {"Wall\nMap 0 0\nPlace 0 0 200 1601", "2: Place: a window of 200 x 100 pixels cannot "
                                                   "show 200 x 1601 of the wall: more than "
                                                   "16 times too many or too few"}}) {
        EXPECT_EQ(problemOf(description, more), "reef.cfg.more:" + message) << more;
    }
    EXPECT_EQ(problemOf(description, "Wall Map 0 0 Place 1048576 0 200 100"),
              "reef.cfg: the wall has 1048776 x 100 pixels; each side has at most 1048576");
    EXPECT_EQ(problemOf("Cluster TileMap"),
              "reef.cfg:1: the file ends where a whole number after TileMap is expected");
    EXPECT_EQ(problemOf(description, "Wal"),
              "reef.cfg.more:1: \"Wal\" stands where \"Wall\" is expected");
}

TEST(WallLayoutTest, WhatOpenGLCannotDrawIsNamed)
{
    const WallLayout wall = layoutOf(describeGrid(12, 1, 1920, 1080, "0 0"));
    const WallTile& last = wall.tiles[11];
    EXPECT_FALSE(beyondLimits(last, {{23040, 1080}, {-32768, 32767}}));
    EXPECT_FALSE(beyondLimits(last, {{23040, 1080}, {0, 0}})) << "no known bounds";
    EXPECT_EQ(beyondLimits(last, {{16384, 16384}, {-32768, 32767}}),
              "the wall has 23040 x 1080 of this window's pixels, and OpenGL "
              "draws at most 16384 x 16384 here");
    EXPECT_TRUE(beyondLimits(last, {{23040, 1079}, {-32768, 32767}}));
    // 11 * 1920 = 21120
    EXPECT_EQ(beyondLimits(last, {{32768, 32768}, {-21119, 32767}}),
              "the wall's corner is at -21120 0 from this window's, and OpenGL "
              "draws from -21119 to 32767 here");
    EXPECT_FALSE(beyondLimits(last, {{32768, 32768}, {-21120, 32767}}));
}

TEST(WallLayoutTest, ASecondLayoutReplacesTheFirst)
{
    WallLayout wall = layoutOf(describeGrid(3, 2, 100, 50, "0.1 0.1"), "Wall Seed 5");
    ASSERT_FALSE(layOut(filesOf(describeGrid(1, 1, 100, 50, "0 0")), wall));
    EXPECT_EQ(wall.tiles.size(), 1u);
    EXPECT_EQ(wall.width, 100);
    EXPECT_FALSE(wall.seed);
}

} // namespace
