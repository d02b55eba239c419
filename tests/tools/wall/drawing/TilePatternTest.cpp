#include "TilePattern.h"

#include "GrayBar.h"
#include "TilePictures.h"
#include "WallFigures.h"
#include "Walls.h"

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <set>
#include <stdexcept>

namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

/// 3 by 2 tiles of 240 by 180 pixels; the gaps are 12 and 18: a wall of 744 by 378.
const std::string BEZELS = describeGrid(3, 2, 240, 180, "0.05 0.1");
constexpr int WIDTH_OF_WALL = 744;
constexpr int HEIGHT_OF_WALL = 378;

class TilePatternTest : public GLTest {
protected:
    static TilePicture draw(const WallLayout& wall, int rank, unsigned long frame)
    {
        glClear(GL_COLOR_BUFFER_BIT);
        TilePattern pattern(wall, rank, KELPIX_FONT_FILE);
        pattern.draw(frame);
        pattern.clean();
        return readTile(wall.tiles[static_cast<std::size_t>(rank)]);
    }

    /// All tiles at their places; black between them.
    static TilePicture compose(const WallLayout& wall, unsigned long frame)
    {
        TilePicture whole(wall.width, wall.height);
        for (const WallTile& tile : wall.tiles) {
            const TilePicture picture = draw(wall, tile.rank, frame);
            for (int y = 0; y < picture.height; ++y) {
                for (int x = 0; x < picture.width; ++x) {
                    for (int channel = 0; channel < 3; ++channel) {
                        const int at =
                            3 * ((tile.wall.y + y) * wall.width + tile.wall.x + x) + channel;
                        whole.rgb.at(static_cast<std::size_t>(at)) = picture.rgb.at(
                            static_cast<std::size_t>(3 * (y * picture.width + x) + channel));
                    }
                }
            }
        }
        return whole;
    }

    /// The number that a tile's bar shows; each cell is read at its middle.
    static unsigned readBar(const TilePicture& picture)
    {
        unsigned code = 0;
        for (int bit = 0; bit < GrayBar::BITS; ++bit) {
            const PixelRect cell = GrayBar::cell(picture.width, picture.height, bit);
            const auto color = picture.at(cell.x + cell.w / 2, cell.y + cell.h / 2);
            EXPECT_TRUE(color[0] < 64 || color[0] == 255);
            code |= color[0] == 255 ? 1U << bit : 0U;
        }
        return GrayBar::decode(code);
    }

    static bool isWhite(const std::array<int, 3>& color)
    {
        return color == std::array{255, 255, 255};
    }

    /// The yellow of the diagonals, and the light blue of the circles.
    static bool isDiagonal(const std::array<int, 3>& color)
    {
        return color == std::array{255, 208, 64};
    }
    static bool isCircle(const std::array<int, 3>& color)
    {
        return color == std::array{64, 208, 255};
    }
};

TEST_F(TilePatternTest, TheBorderIsTheOutermostPixels)
{
    const WallLayout wall = layoutOf(BEZELS);
    for (const int rank : {0, 3, 5}) {
        const TilePicture picture = draw(wall, rank, 0);
        for (int x = 0; x < picture.width; ++x) {
            ASSERT_TRUE(isWhite(picture.at(x, 0))) << x;
            ASSERT_TRUE(isWhite(picture.at(x, picture.height - 1))) << x;
        }
        for (int y = 0; y < picture.height; ++y) {
            ASSERT_TRUE(isWhite(picture.at(0, y))) << y;
            ASSERT_TRUE(isWhite(picture.at(picture.width - 1, y))) << y;
        }
        int inner = 0;
        for (int x = 1; x + 1 < picture.width; ++x) {
            inner +=
                isWhite(picture.at(x, 1)) || isWhite(picture.at(x, picture.height - 2)) ? 1 : 0;
        }
        for (int y = 1; y + 1 < picture.height; ++y) {
            inner += isWhite(picture.at(1, y)) || isWhite(picture.at(picture.width - 2, y)) ? 1 : 0;
        }
        EXPECT_LT(inner, 4) << "the border is one pixel wide";
        EXPECT_THAT(pixel(picture.width, 90), ElementsAre(0, 0, 0, 0)) << "beside the window";
    }
}

TEST_F(TilePatternTest, TheBarShowsTheFrame)
{
    const WallLayout wall = layoutOf(BEZELS);
    TilePattern pattern(wall, 4, KELPIX_FONT_FILE);
    for (const auto& [frame, shown] : {std::pair{0UL, 0U},
                                       {1UL, 1U},
                                       {2UL, 2U},
                                       {12345UL, 12345U},
                                       {65535UL, 65535U},
                                       {65536UL, 0U},
                                       {7000000001UL, 34305U}}) {
        pattern.draw(frame);
        EXPECT_EQ(readBar(readTile(wall.tiles[4])), shown) << frame;
    }
    pattern.clean();
}

TEST_F(TilePatternTest, DiagonalsGoOnBehindTheBezels)
{
    const WallLayout wall = layoutOf(BEZELS);
    ASSERT_EQ(wall.width, WIDTH_OF_WALL);
    ASSERT_EQ(wall.height, HEIGHT_OF_WALL);
    const TilePicture whole = compose(wall, 7);
    // Beside each bezel that a diagonal crosses, two pixels from the border of the tile: the
    // columns 240 to 251 and 492 to 503 are behind bezels, as are the rows 180 to 197.
    for (const int x : {237, 254, 489, 506}) {
        const double y = (x + 0.5) * HEIGHT_OF_WALL / WIDTH_OF_WALL;
        EXPECT_TRUE(isDiagonal(whole.at(x, static_cast<int>(y)))) << "rising, column " << x;
        EXPECT_TRUE(isDiagonal(whole.at(x, static_cast<int>(HEIGHT_OF_WALL - y))))
            << "falling, column " << x;
        EXPECT_FALSE(isDiagonal(whole.at(x, static_cast<int>(y) + 9)));
    }
    for (const int y : {3, 374}) {
        const double x = (y + 0.5) * WIDTH_OF_WALL / HEIGHT_OF_WALL;
        EXPECT_TRUE(isDiagonal(whole.at(static_cast<int>(x), y)));
        EXPECT_TRUE(isDiagonal(whole.at(static_cast<int>(WIDTH_OF_WALL - x), y)));
    }
    for (int y = 0; y < HEIGHT_OF_WALL; ++y) {
        EXPECT_THAT(whole.at(246, y), ElementsAre(0, 0, 0)) << "behind a bezel";
    }
}

TEST_F(TilePatternTest, TilesNearEachOtherDifferInColor)
{
    const WallLayout wall = layoutOf(BEZELS);
    std::set<std::array<int, 3>> grounds;
    for (const WallTile& tile : wall.tiles) {
        grounds.insert(draw(wall, tile.rank, 0).at(30, 150));
    }
    EXPECT_EQ(grounds.size(), 6u);
}

TEST_F(TilePatternTest, CirclesCrossTheSeams)
{
    const WallLayout wall = layoutOf(BEZELS);
    const TilePicture whole = compose(wall, 7);
    // Over the seam between the two lower left tiles, whose middle is (246, 90), with a quarter of
    // 180 as its radius; 30 degrees up and down, on both tiles.
    for (const int side : {-1, 1}) {
        for (const int up : {-1, 1}) {
            const int x = static_cast<int>(246 + side * 45 * std::cos(0.5236));
            const int y = static_cast<int>(90 + up * 45 * std::sin(0.5236));
            EXPECT_TRUE(isCircle(whole.at(x, y))) << x << " " << y;
        }
    }
    // The largest one touches the top and the bottom of the wall, in the middle column.
    EXPECT_TRUE(isCircle(whole.at(374, HEIGHT_OF_WALL - 3)) ||
                isWhite(whole.at(374, HEIGHT_OF_WALL - 3)));
    EXPECT_TRUE(isCircle(whole.at(340, 5)) || isCircle(whole.at(340, 4)));
}

TEST_F(TilePatternTest, EachSeamHasACircle)
{
    const WallFigures figures(layoutOf(BEZELS));
    ASSERT_EQ(figures.circles.size(), 2u + 4 + 3);
    std::vector<std::pair<float, float>> middles;
    for (const WallFigures::Circle& circle : figures.circles) {
        middles.emplace_back(circle.middle.x, circle.middle.y);
    }
    // Upper tiles start at row 198; the middle between two tiles is 6 and 9 pixels from each.
    EXPECT_THAT(middles, UnorderedElementsAre(std::pair(372.0F, 189.0F), std::pair(372.0F, 189.0F),
                                              std::pair(246.0F, 90.0F), std::pair(498.0F, 90.0F),
                                              std::pair(246.0F, 288.0F), std::pair(498.0F, 288.0F),
                                              std::pair(120.0F, 189.0F), std::pair(372.0F, 189.0F),
                                              std::pair(624.0F, 189.0F)));
    EXPECT_EQ(figures.circles[0].radius, 187);
    EXPECT_EQ(figures.circles[1].radius, 94.5F);
    EXPECT_EQ(figures.circles[2].radius, 45);
}

TEST_F(TilePatternTest, TheTextTellsTilesAndFramesApart)
{
    const WallLayout wall = layoutOf(describeGrid(2, 1, 240, 180, "0 0"));
    const auto whites = [](const TilePicture& picture) {
        // Those of the text, which stands above the bar and below the arrow.
        std::vector<int> places;
        for (int y = 45; y < 150; ++y) {
            for (int x = 20; x < 220; ++x) {
                // The edges of letters are gray.
                const auto color = picture.at(x, y);
                if (std::min(color[0], color[2]) > 200) {
                    places.push_back(y * picture.width + x);
                }
            }
        }
        return places;
    };
    const auto first = whites(draw(wall, 0, 5));
    EXPECT_GT(first.size(), 200u);
    EXPECT_NE(first, whites(draw(wall, 1, 5))) << "another host";
    EXPECT_NE(first, whites(draw(wall, 0, 6))) << "another frame";
    EXPECT_EQ(first, whites(draw(wall, 0, 5)));
}

TEST_F(TilePatternTest, TilesOfAllSizesHaveAPattern)
{
    for (const auto& [width, height] : {std::pair{1, 1}, {7, 3}, {40, 400}, {700, 30}}) {
        const WallLayout wall = layoutOf(describeGrid(1, 1, width, height, "0 0"));
        const TilePicture picture = draw(wall, 0, 4000000000);
        EXPECT_TRUE(isWhite(picture.at(0, 0))) << width;
        EXPECT_TRUE(isWhite(picture.at(width - 1, height - 1))) << width;
    }
}

TEST_F(TilePatternTest, AFontThatCannotBeReadIsAnError)
{
    const WallLayout wall = layoutOf(describeGrid(1, 1, 100, 100, "0 0"));
    EXPECT_THROW(TilePattern(wall, 0, "missing.ttf"), std::runtime_error);
}

TEST_F(TilePatternTest, TheStateOfTheSceneStays)
{
    const WallLayout wall = layoutOf(BEZELS);
    TilePattern pattern(wall, 1, KELPIX_FONT_FILE);
    glViewport(-5, -6, 700, 600);
    glScissor(1, 2, 3, 4);
    glEnable(GL_LIGHTING);
    glBlendFunc(GL_ONE, GL_ONE);
    glListBase(77);
    glMatrixMode(GL_PROJECTION);
    glScalef(2, 3, 4);
    const std::vector<float> projection = getMatrix(GL_PROJECTION_MATRIX);
    pattern.draw(3);
    GLint box[4] = {};
    glGetIntegerv(GL_VIEWPORT, box);
    EXPECT_THAT(box, ElementsAre(-5, -6, 700, 600));
    glGetIntegerv(GL_SCISSOR_BOX, box);
    EXPECT_THAT(box, ElementsAre(1, 2, 3, 4));
    EXPECT_TRUE(isEnabled(GL_LIGHTING));
    EXPECT_FALSE(isEnabled(GL_SCISSOR_TEST));
    EXPECT_EQ(getInteger(GL_BLEND_DST), GL_ONE);
    EXPECT_EQ(getInteger(GL_LIST_BASE), 77);
    EXPECT_EQ(getInteger(GL_MATRIX_MODE), GL_PROJECTION);
    EXPECT_EQ(getMatrix(GL_PROJECTION_MATRIX), projection);
    EXPECT_EQ(getInteger(GL_PROJECTION_STACK_DEPTH), 1);
    EXPECT_EQ(getInteger(GL_MODELVIEW_STACK_DEPTH), 1);
    EXPECT_EQ(getInteger(GL_ATTRIB_STACK_DEPTH), 0);
    glListBase(0);
    pattern.clean();
}

} // namespace
