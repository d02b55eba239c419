#include "FlashMeter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using record::FlashMeter;
using record::Picture;
using testing::AllOf;
using testing::HasSubstr;

/// A color of sRGB bytes.
struct Color {
    std::uint8_t red, green, blue;
};

constexpr Color BLACK{0, 0, 0};
constexpr Color WHITE{255, 255, 255};

Color gray(int value)
{
    const auto byte = static_cast<std::uint8_t>(value);
    return {byte, byte, byte};
}

constexpr int FPS = 40;

/// 96 x 96 pixels: a field of 10 degrees has 42 x 32 of them, 1344.
constexpr int SIDE = 96;

Picture filled(int side, Color color)
{
    Picture picture{side, side, {}};
    for (int i = 0; i < side * side; ++i) {
        picture.pixels.insert(picture.pixels.end(), {color.red, color.green, color.blue, 0});
    }
    return picture;
}

void fill(Picture& picture, int left, int top, int width, int height, Color color)
{
    for (int y = top; y < top + height; ++y) {
        for (int x = left; x < left + width; ++x) {
            std::uint8_t* const pixel =
                &picture.pixels[static_cast<std::size_t>(4 * (y * picture.width + x))];
            pixel[0] = color.red;
            pixel[1] = color.green;
            pixel[2] = color.blue;
        }
    }
}

/// What is found when two pictures follow each other: the first, so many times the second and the
/// first again, and then the first for two seconds.
/// \param period  frames from one flash to the next
FlashMeter::Result strobe(const Picture& first, const Picture& second, int flashes, int period = 10)
{
    FlashMeter meter(first.width, first.height, FPS);
    meter.add(first);
    for (int frame = 0; frame < flashes * period; ++frame) {
        meter.add(frame % period < period / 2 ? second : first);
    }
    for (int frame = 0; frame < 2 * FPS; ++frame) {
        meter.add(first);
    }
    return meter.finish();
}

FlashMeter::Result strobe(Color first, Color second, int flashes, int period = 10)
{
    return strobe(filled(SIDE, first), filled(SIDE, second), flashes, period);
}

TEST(RecordFlashMeterTest, ThreeFlashesInASecondAreAllowedAndFourAreNot)
{
    EXPECT_TRUE(strobe(BLACK, WHITE, 0).isMet());
    const FlashMeter::Result three = strobe(BLACK, WHITE, 3);
    EXPECT_TRUE(three.isMet());
    EXPECT_EQ(three.general.most, 3);
    EXPECT_EQ(three.general.largest, 1);
    const FlashMeter::Result four = strobe(BLACK, WHITE, 4);
    EXPECT_FALSE(four.isMet());
    EXPECT_EQ(four.general.most, 4);
    EXPECT_EQ(four.red.most, 0);
    EXPECT_EQ(four.red.largest, 0);
    EXPECT_FALSE(strobe(WHITE, BLACK, 4).isMet()) << "whatever comes first";
    EXPECT_FALSE(strobe(BLACK, WHITE, 20, 2).isMet()) << "at every frame";
}

TEST(RecordFlashMeterTest, ManyFlashesAreAllowedWhenNoSecondHoldsMoreThanThree)
{
    // A change every 7 frames: the eighth comes 49 frames after the first.
    EXPECT_TRUE(strobe(BLACK, WHITE, 50, 14).isMet());
    EXPECT_FALSE(strobe(BLACK, WHITE, 50, 10).isMet());
}

TEST(RecordFlashMeterTest, OneChangeIsNoFlash)
{
    FlashMeter meter(SIDE, SIDE, FPS);
    for (int step = 0; step <= 5; ++step) {
        meter.add(filled(SIDE, gray(step * 51))); // ever brighter
    }
    EXPECT_EQ(meter.finish().general.most, 0);
}

TEST(RecordFlashMeterTest, AFadeIsAChangeAsMuchAsAJump)
{
    FlashMeter meter(SIDE, SIDE, FPS);
    for (int flash = 0; flash < 4; ++flash) {
        for (const int value : {0, 51, 102, 153, 204, 255, 204, 153, 102, 51}) {
            meter.add(filled(SIDE, gray(value)));
        }
    }
    EXPECT_FALSE(meter.finish().isMet());
}

TEST(RecordFlashMeterTest, AChangeIsATenthOfTheLargestLuminance)
{
    // Relative luminances: 0.09990 and 0.10224.
    EXPECT_TRUE(strobe(BLACK, gray(89), 4).isMet());
    EXPECT_FALSE(strobe(BLACK, gray(90), 4).isMet());
}

TEST(RecordFlashMeterTest, NothingFlashesAboveFourFifthsOfIt)
{
    // Relative luminances: 0.79910 and 0.80695.
    EXPECT_FALSE(strobe(WHITE, gray(231), 4).isMet());
    EXPECT_TRUE(strobe(WHITE, gray(232), 4).isMet());
}

TEST(RecordFlashMeterTest, AQuarterOfAFieldMayFlash)
{
    const auto spot = [](int width, int height, int left, int top) {
        Picture second = filled(SIDE, BLACK);
        fill(second, left, top, width, height, WHITE);
        return strobe(filled(SIDE, BLACK), second, 4);
    };
    // 336 of 1344 are a quarter.
    EXPECT_DOUBLE_EQ(spot(16, 21, 0, 0).general.largest, 0.25);
    EXPECT_TRUE(spot(16, 21, 40, 40).isMet());
    EXPECT_FALSE(spot(16, 22, 40, 40).isMet());
    EXPECT_FALSE(spot(16, 22, SIDE - 16, SIDE - 22).isMet()) << "in the last corner";
}

TEST(RecordFlashMeterTest, SpotsCountTogetherWithinOneField)
{
    const auto spots = [](int distance) {
        Picture second = filled(SIDE, BLACK);
        fill(second, 0, 0, 12, 20, WHITE);
        fill(second, distance, 0, 12, 20, WHITE);
        return strobe(filled(SIDE, BLACK), second, 4);
    };
    EXPECT_FALSE(spots(30).isMet()) << "both are in a field 42 wide";
    EXPECT_TRUE(spots(60).isMet());
}

TEST(RecordFlashMeterTest, AFinePatternIsNoFlash)
{
    Picture even = filled(4 * SIDE, BLACK);
    Picture odd = even;
    for (int y = 0; y < even.height; ++y) {
        for (int x = 0; x < even.width; ++x) {
            fill((x + y) % 2 == 0 ? even : odd, x, y, 1, 1, WHITE);
        }
    }
    EXPECT_TRUE(strobe(even, odd, 4).isMet());
    EXPECT_FALSE(strobe(filled(4 * SIDE, BLACK), odd, 4).isMet()) << "half as bright on average";
}

TEST(RecordFlashMeterTest, RedFlashesCountByTheirColor)
{
    // Red and this gray have a relative luminance of 0.2126 and 0.2122.
    const Color red{255, 0, 0};
    const FlashMeter::Result three = strobe(gray(127), red, 3);
    EXPECT_TRUE(three.isMet());
    EXPECT_EQ(three.red.most, 3);
    EXPECT_EQ(three.general.most, 0);
    EXPECT_FALSE(strobe(gray(127), red, 4).isMet());
    EXPECT_FALSE(strobe(red, gray(127), 4).isMet());
}

TEST(RecordFlashMeterTest, ARedFlashGoesToOrFromASaturatedRedOfAnotherHue)
{
    // u', v' of sRGB's primaries: red 0.451 0.523, green 0.125 0.563, blue 0.175 0.158.
    EXPECT_EQ(strobe({0, 180, 0}, {0, 0, 255}, 4).red.largest, 0);
    // In linear light 0.802 and 0.792 of these oranges are red; both are 0.4 from blue.
    EXPECT_EQ(strobe({255, 136, 0}, {0, 0, 255}, 4).red.largest, 1);
    EXPECT_EQ(strobe({255, 140, 0}, {0, 0, 255}, 4).red.largest, 0);
    // Two saturated reds, 0.09 apart.
    EXPECT_EQ(strobe({255, 0, 0}, {255, 100, 0}, 4).red.largest, 0);
}

TEST(RecordFlashMeterTest, BlackHasTheHueOfWhite)
{
    EXPECT_EQ(strobe(BLACK, WHITE, 4).red.largest, 0);
    EXPECT_EQ(strobe(BLACK, {255, 0, 0}, 4).red.largest, 1);
}

TEST(RecordFlashMeterTest, TellsNumbersAndVerdict)
{
    EXPECT_EQ(strobe(BLACK, WHITE, 3).text(),
              "flashes          in a second   at once, of a field of 10 degrees\n"
              "general          3             100.0 %\n"
              "red              0             0.0 %\n"
              "WCAG 2.3.1 is met: at most three in a second, or at most 25 % of a field");
    EXPECT_THAT(strobe(BLACK, WHITE, 40, 2).text(),
                AllOf(HasSubstr("general          4 or more     100.0 %\n"),
                      HasSubstr("\nWCAG 2.3.1 is not met: ")));
}

/// A field of stripes, 16 pixels wide, that moves by so many pixels at each frame.
FlashMeter::Result movingStripes(int speed)
{
    FlashMeter meter(SIDE, SIDE, FPS);
    for (int frame = 0; frame < 2 * FPS; ++frame) {
        Picture picture = filled(SIDE, BLACK);
        for (int x = 0; x < SIDE; ++x) {
            if ((x + frame * speed) / 16 % 2 == 0) {
                fill(picture, x, 0, 1, SIDE, WHITE);
            }
        }
        meter.add(picture);
    }
    return meter.finish();
}

TEST(RecordFlashMeterTest, WhatMovesIsNoFlashUnlessMuchOfItChangesAtOnce)
{
    // At each frame 5 of 32 columns get brighter, of a field's 42 at most 10, and as many darker.
    const FlashMeter::Result moving = movingStripes(5);
    EXPECT_EQ(moving.general.most, 0);
    EXPECT_DOUBLE_EQ(moving.general.largest, 10.0 / 42);
    EXPECT_FALSE(movingStripes(16).isMet()) << "black where white was";
}

TEST(RecordFlashMeterTest, ACheckerboardFlashesBothWaysAtOnce)
{
    Picture even = filled(SIDE, BLACK);
    Picture odd = even;
    for (int y = 0; y < SIDE; y += 4) {
        for (int x = 0; x < SIDE; x += 4) {
            fill((x + y) % 8 == 0 ? even : odd, x, y, 4, 4, WHITE);
        }
    }
    EXPECT_FALSE(strobe(even, odd, 4).isMet());
}

TEST(RecordFlashMeterTest, AFadeNeedNotBeSteepestEverywhereAtOnce)
{
    // Fifths of the picture are steepest in one of the five frames each.
    FlashMeter meter(SIDE, SIDE, FPS);
    for (int flash = 0; flash < 4; ++flash) {
        for (const int frame : {0, 1, 2, 3, 4, 5, 5, 4, 3, 2, 1, 0}) {
            Picture picture = filled(SIDE, BLACK);
            for (int x = 0; x < SIDE; ++x) {
                fill(picture, x, 0, 1, SIDE, gray(40 * frame + (frame > x % 5 ? 20 : 0)));
            }
            meter.add(picture);
        }
    }
    EXPECT_GE(meter.finish().general.most, 3); // 12 frames each: three in some second
    EXPECT_GT(meter.finish().general.largest, 0.5);
}

TEST(RecordFlashMeterTest, MeasuresPicturesOfAnySize)
{
    for (const auto& [width, height] :
         std::vector<std::pair<int, int>>{{1, 1}, {1, 500}, {500, 1}, {2, 3}}) {
        FlashMeter meter(width, height, 1);
        meter.add({width, height,
                   std::vector<std::uint8_t>(static_cast<std::size_t>(4 * width * height))});
        EXPECT_TRUE(meter.finish().isMet());
    }
}

} // namespace
