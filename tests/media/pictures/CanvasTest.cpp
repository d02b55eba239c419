#include "Canvas.h"

#include <gtest/gtest.h>

namespace {

using media::Bitmap;
using media::Canvas;
using media::Color;
using media::Point;

TEST(CanvasTest, StartsTransparent)
{
    const Canvas canvas(3, 2);
    EXPECT_EQ(canvas.width(), 3);
    EXPECT_EQ(canvas.height(), 2);
    EXPECT_EQ(canvas.at(2, 1).a, 0);
}

TEST(CanvasTest, BlendLaysAColorOverWhatIsThere)
{
    Canvas canvas(1, 1);
    canvas.blend(0, 0, {1, 0, 0, 1});
    canvas.blend(0, 0, {0, 1, 0, 0.5f}, 0.5f);
    EXPECT_FLOAT_EQ(canvas.at(0, 0).r, 0.75f);
    EXPECT_FLOAT_EQ(canvas.at(0, 0).g, 0.25f);
    EXPECT_FLOAT_EQ(canvas.at(0, 0).a, 1);
}

TEST(CanvasTest, BlendOutsideTheCanvasDoesNothing)
{
    Canvas canvas(1, 1);
    for (const auto& [x, y] :
         {std::pair(-1, 0), std::pair(0, -1), std::pair(1, 0), std::pair(0, 1)}) {
        canvas.blend(x, y, {1, 1, 1, 1});
    }
    EXPECT_EQ(canvas.at(0, 0).a, 0);
}

TEST(CanvasTest, DrawLaysALayerOverAnother)
{
    Canvas under(1, 1);
    under.blend(0, 0, {0, 0, 1, 1});
    Canvas layer(1, 1);
    layer.blend(0, 0, {1, 0, 0, 0.5f});
    under.draw(layer);
    EXPECT_FLOAT_EQ(under.at(0, 0).r, 0.5f);
    EXPECT_FLOAT_EQ(under.at(0, 0).b, 0.5f);
    EXPECT_FLOAT_EQ(under.at(0, 0).a, 1);
}

TEST(CanvasTest, IsOneUnitWideUnlessItIsToldOtherwise)
{
    const Canvas canvas(4, 2);
    EXPECT_FLOAT_EQ(canvas.center(0, 0).x, 0.125f);
    EXPECT_FLOAT_EQ(canvas.center(3, 1).x, 0.875f);
    EXPECT_FLOAT_EQ(canvas.center(3, 1).y, 0.375f);
    EXPECT_FLOAT_EQ(canvas.pixel({1, 0.5f}).x, 4);
    EXPECT_FLOAT_EQ(canvas.pixel({1, 0.5f}).y, 2);
}

TEST(CanvasTest, MayBeginAnywhereInAnyScale)
{
    const Canvas canvas(8, 4, {-1, 0.5f}, 2);
    EXPECT_FLOAT_EQ(canvas.center(0, 0).x, -0.75f);
    EXPECT_FLOAT_EQ(canvas.center(0, 0).y, 0.75f);
    EXPECT_FLOAT_EQ(canvas.pixel({0, 1}).x, 2);
    EXPECT_FLOAT_EQ(canvas.pixel({0, 1}).y, 1);
    const Canvas other = canvas.another();
    EXPECT_EQ(other.width(), 8);
    EXPECT_EQ(other.height(), 4);
    EXPECT_FLOAT_EQ(other.unit(), 2);
    EXPECT_FLOAT_EQ(other.center(0, 0).x, -0.75f);
    EXPECT_EQ(other.at(7, 3).a, 0);
}

TEST(CanvasTest, CopyRowsTakesThePlaceOfWhatWasThere)
{
    Canvas canvas(2, 3);
    canvas.blend(1, 0, {1, 0, 0, 1});
    canvas.blend(1, 1, {1, 0, 0, 1});
    Canvas row(2, 1);
    row.blend(0, 0, {0, 1, 0, 1});
    canvas.copyRows(row, 1);
    EXPECT_EQ(canvas.at(1, 0).r, 1);
    EXPECT_EQ(canvas.at(0, 1).g, 1);
    EXPECT_EQ(canvas.at(1, 1).a, 0);
    EXPECT_EQ(canvas.at(0, 2).a, 0);
}

TEST(CanvasTest, PaintAveragesTheSamplesOfAPixel)
{
    Canvas canvas(1, 1);
    canvas.paint(4, [](Point p) { return Color{1, 1, 1, p.x < 0.25f ? 1.0f : 0.0f}; });
    EXPECT_FLOAT_EQ(canvas.at(0, 0).a, 0.25f);
    EXPECT_FLOAT_EQ(canvas.at(0, 0).r, 0.25f);
}

TEST(CanvasTest, BlurSpreadsAPointByItsDeviationAndLosesNothing)
{
    Canvas canvas(61, 61);
    canvas.blend(30, 30, {1, 1, 1, 1});
    // Three boxes nine pixels wide: the variance is 3 * (9 * 9 - 1) / 12.
    canvas.blur(4.472f);
    double sum = 0;
    double square = 0;
    for (int y = 0; y < 61; ++y) {
        for (int x = 0; x < 61; ++x) {
            sum += static_cast<double>(canvas.at(x, y).a);
            square += static_cast<double>(canvas.at(x, y).a) * (x - 30) * (x - 30);
        }
    }
    EXPECT_NEAR(sum, 1, 1e-3);
    EXPECT_NEAR(square, 20, 0.01);
    EXPECT_NEAR(canvas.at(26, 30).a, canvas.at(30, 34).a, 1e-5f);
}

TEST(CanvasTest, BlurKeepsAnEvenPictureAsItIs)
{
    Canvas canvas(8, 8);
    canvas.paint(1, [](Point) { return Color{0.2f, 0.4f, 0.6f, 1}; });
    canvas.blur(2);
    EXPECT_NEAR(canvas.at(0, 0).g, 0.4f, 1e-5f);
    EXPECT_NEAR(canvas.at(7, 3).b, 0.6f, 1e-5f);
}

TEST(CanvasTest, ToRgbRoundsAndCutsOff)
{
    Canvas canvas(1, 1);
    canvas.at(0, 0) = {1.7f, 0.5f, -1, 1};
    const Bitmap image = canvas.toRgb();
    EXPECT_EQ(image.channels, 3);
    EXPECT_EQ(image.bytes, (std::vector<unsigned char>{255, 128, 0}));
}

TEST(CanvasTest, ToRgbaTakesTheAlphaOutAndFillsTheRestWithNeighbors)
{
    Canvas canvas(4, 1);
    canvas.blend(0, 0, {1, 0.5f, 0, 0.5f});
    const Bitmap image = canvas.toRgba();
    EXPECT_EQ(image.channels, 4);
    EXPECT_EQ(image.bytes, (std::vector<unsigned char>{255, 128, 0, 128, 255, 128, 0, 0, 255, 128,
                                                       0, 0, 255, 128, 0, 0}));
}

TEST(CanvasTest, ToRgbaOfAnEmptyCanvasIsTransparentBlack)
{
    const Bitmap image = Canvas(2, 2).toRgba();
    EXPECT_EQ(image.bytes, std::vector<unsigned char>(16, 0));
}

} // namespace
