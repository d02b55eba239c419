#include "ReadPicture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <numeric>
#include <png.h>

namespace {

std::string path(const std::string& name)
{
    return std::string(KELPIX_MEDIA_DIR "/data/") + name;
}

struct Rgb {
    double r = 0;
    double g = 0;
    double b = 0;
};

/// The mean color of the pixels x0 <= x < x1, y0 <= y < y1, given as shares of the picture.
Rgb mean(const Picture& picture, double x0, double y0, double x1, double y1)
{
    Rgb sum;
    int count = 0;
    for (int y = static_cast<int>(y0 * picture.height); y < static_cast<int>(y1 * picture.height);
         ++y) {
        for (int x = static_cast<int>(x0 * picture.width); x < static_cast<int>(x1 * picture.width);
             ++x) {
            sum.r += picture.at(x, y, 0);
            sum.g += picture.at(x, y, 1);
            sum.b += picture.at(x, y, 2);
            ++count;
        }
    }
    return {sum.r / count, sum.g / count, sum.b / count};
}

double brightness(const Rgb& c)
{
    return 0.3 * c.r + 0.6 * c.g + 0.1 * c.b;
}

TEST(WaterPictureTest, IsATrueColorJpegThatEveryReaderAndTextureUnitTakes)
{
    const Picture water = readJpeg(path("underwater.jpg"));
    EXPECT_EQ(water.width, 1024);
    EXPECT_EQ(water.height, 1024);
    EXPECT_EQ(water.channels, 3);
    EXPECT_EQ(water.bitDepth, 8);
    ASSERT_EQ(water.samplingFactors.size(), 3u);
    for (const auto& factors : water.samplingFactors) {
        EXPECT_EQ(factors[0], 1) << "color is stored at full width";
        EXPECT_EQ(factors[1], 1) << "color is stored at full height";
    }
}

TEST(WaterPictureTest, RunsOutIntoTwiceTheClearColor)
{
    const Picture water = readJpeg(path("underwater.jpg"));
    for (const Rgb& rim : {mean(water, 0, 0, 1, 0.004), mean(water, 0, 0.996, 1, 1),
                           mean(water, 0, 0, 0.004, 1), mean(water, 0.996, 0, 1, 1)}) {
        EXPECT_NEAR(rim.r, 10, 6);
        EXPECT_NEAR(rim.g, 51, 8);
        EXPECT_NEAR(rim.b, 77, 8);
    }
    // Nothing of that is left a little further in, above all in what the square window shows.
    EXPECT_GT(brightness(mean(water, 0.3, 0.03, 0.6, 0.05)), 120);
}

TEST(WaterPictureTest, KeepsRedBelowHalfOfGreenNearTheSurface)
{
    const Picture water = readJpeg(path("underwater.jpg"));
    for (double y = 0.03; y < 0.3; y += 0.02) {
        for (double x = 0.28; x < 0.72; x += 0.02) {
            const Rgb c = mean(water, x, y, x + 0.02, y + 0.02);
            EXPECT_LT(c.r, 0.5 * c.g) << x << ", " << y;
        }
    }
}

TEST(WaterPictureTest, IsBrightAsTheSceneShowsItAndHasNoBlackCorner)
{
    // In the square window, halved. The luma is that of Rec. 709.
    const Picture water = readJpeg(path("underwater.jpg"));
    const int low = water.width * 189 / 10000;
    std::vector<double> luma;
    double saturation = 0;
    for (int y = low; y < water.height - low; ++y) {
        for (int x = low; x < water.width - low; ++x) {
            const double r = water.at(x, y, 0) / 2.0;
            const double g = water.at(x, y, 1) / 2.0;
            const double b = water.at(x, y, 2) / 2.0;
            luma.push_back(0.2126 * r + 0.7152 * g + 0.0722 * b);
            saturation += 1 - std::min({r, g, b}) / std::max({r, g, b, 1.0});
        }
    }
    const auto count = static_cast<double>(luma.size());
    EXPECT_GT(std::accumulate(luma.begin(), luma.end(), 0.0) / count, 75);
    EXPECT_GT(saturation / count, 0.74);
    std::nth_element(luma.begin(), luma.begin() + std::ptrdiff_t(luma.size() / 10), luma.end());
    EXPECT_GT(luma[luma.size() / 10], 40) << "the darkest tenth";
}

TEST(WaterPictureTest, IsLitFromAboveAndBlueInTheDeep)
{
    const Picture water = readJpeg(path("underwater.jpg"));
    const Rgb top = mean(water, 0.3, 0.03, 0.7, 0.15);
    const Rgb middle = mean(water, 0.3, 0.4, 0.7, 0.5);
    const Rgb deep = mean(water, 0.3, 0.65, 0.7, 0.75);
    const Rgb ground = mean(water, 0.3, 0.85, 0.7, 0.97);
    EXPECT_GT(brightness(top), 1.2 * brightness(middle));
    EXPECT_GT(brightness(middle), 1.2 * brightness(deep));
    EXPECT_GT(brightness(ground), 1.2 * brightness(deep));
    EXPECT_GT(deep.b, 1.4 * deep.g);
    EXPECT_GT(top.g, 210);
    EXPECT_GT(brightness(deep), 80) << "a third more than black water";
}

TEST(WaterPictureTest, HasNoDarkStripBelowTheSurface)
{
    // Each row is a little darker than the one above; none is clearly darker than those below it.
    const Picture water = readJpeg(path("underwater.jpg"));
    for (double y = 0.03; y < 0.30; y += 0.01) {
        EXPECT_GT(brightness(mean(water, 0.2, y, 0.8, y + 0.01)),
                  0.93 * brightness(mean(water, 0.2, y + 0.03, 0.8, y + 0.04)))
            << y;
    }
}

/// The share of leaves among the pixels of a part of the picture: greener than all water.
double leaves(const Picture& water, double x0, double y0, double x1, double y1)
{
    int green = 0;
    int count = 0;
    for (int y = static_cast<int>(y0 * water.height); y < static_cast<int>(y1 * water.height);
         ++y) {
        for (int x = static_cast<int>(x0 * water.width); x < static_cast<int>(x1 * water.width);
             ++x) {
            green += water.at(x, y, 1) > water.at(x, y, 2) + 20 ? 1 : 0;
            ++count;
        }
    }
    return static_cast<double>(green) / count;
}

TEST(WaterPictureTest, HasKelpAtBothSidesAndLeavesTheMiddleFree)
{
    const Picture water = readJpeg(path("underwater.jpg"));
    EXPECT_GT(leaves(water, 0.07, 0.1, 0.20, 0.8), 0.2);
    EXPECT_GT(leaves(water, 0.80, 0.1, 0.93, 0.8), 0.2);
    EXPECT_LT(leaves(water, 0.32, 0.1, 0.68, 0.8), 0.002);
}

TEST(WaterPictureTest, RunsOutUnevenlyAndWithoutLeavesAtTheSides)
{
    const Picture water = readJpeg(path("underwater.jpg"));
    EXPECT_EQ(leaves(water, 0, 0.03, 0.058, 0.85), 0);
    EXPECT_EQ(leaves(water, 0.942, 0.03, 1, 0.85), 0);
    // How far from the edge a row is half as bright as well inside.
    std::vector<int> places;
    for (int y = water.height / 20; y < water.height * 3 / 4; ++y) {
        const int inside = water.at(water.width * 62 / 1000, y, 1);
        int x = 0;
        while (2 * (water.at(x, y, 1) - 51) < inside - 51) {
            ++x;
        }
        places.push_back(x);
    }
    const auto [least, most] = std::minmax_element(places.begin(), places.end());
    EXPECT_GT(*most - *least, water.width / 80);
    EXPECT_LT(*most, water.width * 6 / 100);
}

TEST(WaterPictureTest, ShowsNoBandsInItsGradient)
{
    // Flat bands of one color would show when the scene halves the picture: somewhere in every
    // small patch of open water neighboring pixels have to differ.
    const Picture water = readJpeg(path("underwater.jpg"));
    for (int y = 300; y < 700; y += 16) {
        for (int x = 400; x < 640; x += 16) {
            int low = 255;
            int high = 0;
            for (int v = y; v < y + 16; ++v) {
                for (int u = x; u < x + 16; ++u) {
                    low = std::min(low, water.at(u, v, 1));
                    high = std::max(high, water.at(u, v, 1));
                }
            }
            EXPECT_GT(high - low, 1) << x << ", " << y;
        }
    }
}

class SpriteTest : public testing::TestWithParam<const char*> {};

TEST_P(SpriteTest, IsAStraightRgbaPictureWithATransparentMargin)
{
    const Picture sprite = readPng(path(GetParam()));
    ASSERT_GT(sprite.width, 0);
    EXPECT_EQ(sprite.bitDepth, 8);
    EXPECT_EQ(sprite.colorType, PNG_COLOR_TYPE_RGB_ALPHA);
    for (int y = 0; y < sprite.height; ++y) {
        for (int x = 0; x < sprite.width; ++x) {
            const int margin = std::min({x, y, sprite.width - 1 - x, sprite.height - 1 - y});
            if (margin < 2) {
                EXPECT_EQ(sprite.at(x, y, 3), 0) << x << ", " << y;
            }
        }
    }
}

TEST_P(SpriteTest, CarriesTheNeighborsColorWhereItIsTransparent)
{
    const Picture sprite = readPng(path(GetParam()));
    int checked = 0;
    for (int y = 1; y + 1 < sprite.height; ++y) {
        for (int x = 1; x + 1 < sprite.width; ++x) {
            if (sprite.at(x, y, 3) != 0) {
                continue;
            }
            // Each channel lies between the smallest and the largest one of the painted
            // neighbors, give or take a rounding.
            for (int k = 0; k < 3; ++k) {
                int low = 255;
                int high = 0;
                for (int v = y - 1; v <= y + 1; ++v) {
                    for (int u = x - 1; u <= x + 1; ++u) {
                        if (sprite.at(u, v, 3) > 0) {
                            low = std::min(low, sprite.at(u, v, k));
                            high = std::max(high, sprite.at(u, v, k));
                        }
                    }
                }
                if (low <= high) {
                    EXPECT_GE(sprite.at(x, y, k), low - 2) << x << ", " << y;
                    EXPECT_LE(sprite.at(x, y, k), high + 2) << x << ", " << y;
                    ++checked;
                }
            }
        }
    }
    EXPECT_GT(checked, 100);
    EXPECT_GT(sprite.at(0, 0, 0) + sprite.at(0, 0, 1) + sprite.at(0, 0, 2), 60)
        << "even the corner has a color";
}

INSTANTIATE_TEST_SUITE_P(Sprites, SpriteTest,
                         testing::Values("fish0.png", "bubble.png", "squid.png"));

TEST(FishSpriteTest, IsSixtyFourTexelsWideAndSymmetric)
{
    const Picture fish = readPng(path("fish0.png"));
    ASSERT_EQ(fish.width, 64);
    ASSERT_EQ(fish.height, 64);
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 32; ++x) {
            for (int k = 0; k < 4; ++k) {
                EXPECT_NEAR(fish.at(x, y, k), fish.at(63 - x, y, k), 2) << x << ", " << y;
            }
        }
    }
}

/// The runs of opaque texels in a row, as pairs of first and last.
std::vector<std::pair<int, int>> opaqueRuns(const Picture& picture, int y)
{
    std::vector<std::pair<int, int>> runs;
    for (int x = 0; x < picture.width; ++x) {
        if (picture.at(x, y, 3) > 127) {
            if (runs.empty() || runs.back().second != x - 1) {
                runs.emplace_back(x, x);
            }
            runs.back().second = x;
        }
    }
    return runs;
}

TEST(FishSpriteTest, HasItsHeadAtTheTopAndAForkedTailBelow)
{
    const Picture fish = readPng(path("fish0.png"));
    int first = 0;
    int last = 63;
    while (opaqueRuns(fish, first).empty()) {
        ++first;
    }
    while (opaqueRuns(fish, last).empty()) {
        --last;
    }
    EXPECT_LT(first, 8);
    EXPECT_GT(last, 55);
    // The snout is one narrow run on the axis, the tail's end two runs beside it.
    const auto snout = opaqueRuns(fish, first + 1);
    ASSERT_EQ(snout.size(), 1u);
    EXPECT_LT(snout[0].second - snout[0].first, 14);
    EXPECT_LE(snout[0].first, 31);
    EXPECT_GE(snout[0].second, 32);
    const auto tail = opaqueRuns(fish, last - 1);
    ASSERT_EQ(tail.size(), 2u);
    EXPECT_LT(tail[0].second, 30);
    EXPECT_GT(tail[1].first, 33);
}

TEST(FishSpriteTest, HasABodyOfThirtyFourTexelsAndATailHalfAsWide)
{
    // Above the fins and below them.
    const Picture fish = readPng(path("fish0.png"));
    int body = 0;
    for (int y = 0; y < 40; ++y) {
        for (const auto& [first, last] : opaqueRuns(fish, y)) {
            int inner = 0;
            for (int x = first; x <= last; ++x) {
                // Fins are pale yellow: only theirs is a little blue, beside that of the band and
                // of the eyes, which are not green.
                const bool fin =
                    fish.at(x, y, 1) > 150 && fish.at(x, y, 2) >= 25 && fish.at(x, y, 2) <= 200;
                inner += fin ? 0 : 1;
            }
            body = std::max(body, inner);
        }
    }
    EXPECT_GE(body, 34);
    EXPECT_LE(body, 40);
    const auto root = opaqueRuns(fish, 49);
    ASSERT_EQ(root.size(), 1u);
    EXPECT_LT(root[0].second - root[0].first, body / 2);
}

TEST(FishSpriteTest, IsGoldAndOrangeWithOneWhiteBandAndYellowFins)
{
    const Picture fish = readPng(path("fish0.png"));
    int bands = 0;
    bool before = false;
    for (int y = 0; y < 64; ++y) {
        const bool white = fish.at(32, y, 3) > 200 && fish.at(32, y, 2) > 220;
        bands += white && !before ? 1 : 0;
        before = white;
    }
    EXPECT_EQ(bands, 1);
    int gold = 0;
    int orange = 0;
    int yellow = 0;
    int dark = 0;
    int opaque = 0;
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            if (fish.at(x, y, 3) > 127) {
                const int r = fish.at(x, y, 0);
                const int g = fish.at(x, y, 1);
                const int b = fish.at(x, y, 2);
                gold += r > 230 && g >= 170 && b < 25 ? 1 : 0;
                orange += r > 230 && g < 170 && b < 25 ? 1 : 0;
                yellow += r > 230 && g >= 170 && b >= 25 && b < 170 ? 1 : 0;
                dark += std::max({r, g, b}) < 150 ? 1 : 0;
                ++opaque;
            }
        }
    }
    EXPECT_GT(gold, opaque / 5);
    EXPECT_GT(orange, opaque / 4);
    EXPECT_GT(yellow, opaque / 10);
    EXPECT_LT(dark, opaque * 3 / 100)
        << "dark lines turn brown over the water; only the eyes are dark";
}

/// An sRGB color as the eye compares colors: CIE 1976 L*, a*, b*, under daylight (D65).
std::array<double, 3> lab(const Rgb& c)
{
    const auto linear = [](double v) {
        return v <= 0.04045 * 255 ? v / 255 / 12.92 : std::pow((v / 255 + 0.055) / 1.055, 2.4);
    };
    const auto root = [](double v) { return v > 0.008856 ? std::cbrt(v) : 7.787 * v + 16.0 / 116; };
    const double r = linear(c.r);
    const double g = linear(c.g);
    const double b = linear(c.b);
    const double x = root((0.4124 * r + 0.3576 * g + 0.1805 * b) / 0.9505);
    const double y = root(0.2126 * r + 0.7152 * g + 0.0722 * b);
    const double z = root((0.0193 * r + 0.1192 * g + 0.9505 * b) / 1.089);
    return {116 * y - 16, 500 * (x - y), 200 * (y - z)};
}

/// A place in the water, in parts of its width and height from the upper left corner, and how far
/// the body's colors are at least from its color. They mix with it, so that a bright place is
/// closer.
struct Swum {
    double x;
    double y;
    double distance;
};

TEST(FishSpriteTest, StandsOutFromTheWaterWhereverItSwims)
{
    const Picture fish = readPng(path("fish0.png"));
    const Picture water = readJpeg(path("underwater.jpg"));
    // The surface, the middle, the deep, the ground, and the kelp.
    for (const auto& [x, y, distance] :
         {Swum{0.45, 0.10, 46}, Swum{0.50, 0.42, 47}, Swum{0.55, 0.70, 54}, Swum{0.42, 0.92, 48},
          Swum{0.17, 0.50, 46}}) {
        const Rgb behind = mean(water, x - 0.03, y - 0.03, x + 0.03, y + 0.03);
        const Rgb shown{behind.r / 2, behind.g / 2, behind.b / 2};
        const auto here = lab(shown);
        double lighter = 0;
        double apart = 0;
        double redder = 0;
        int count = 0;
        for (int row = 4; row < 46; ++row) {
            for (int column = 22; column < 42; ++column) {
                if (fish.at(column, row, 3) < 255) {
                    continue;
                }
                const Rgb both{(shown.r + fish.at(column, row, 0)) / 2,
                               (shown.g + fish.at(column, row, 1)) / 2,
                               (shown.b + fish.at(column, row, 2)) / 2};
                const auto there = lab(both);
                lighter += there[0] - here[0];
                apart += std::hypot(there[0] - here[0], there[1] - here[1], there[2] - here[2]);
                redder += both.r - both.b;
                ++count;
            }
        }
        EXPECT_GT(lighter / count, 11) << x << ", " << y;
        EXPECT_GT(apart / count, distance) << x << ", " << y;
        EXPECT_GT(redder / count, 25) << "orange; " << x << ", " << y;
        EXPECT_GT(shown.b - shown.r, 25) << "blue or green; " << x << ", " << y;
    }
}

TEST(BubbleSpriteTest, GlowsWhereTheSceneDrawsACircleIntoIt)
{
    // The circle goes from the middle up: there the glow grows with it, beside and below is none.
    const Picture bubble = readPng(path("bubble.png"));
    EXPECT_GT(bubble.at(32, 16, 3), bubble.at(32, 24, 3) + 20);
    EXPECT_GT(bubble.at(32, 14, 3), bubble.at(32, 49, 3) + 30);
    EXPECT_GT(bubble.at(32, 16, 3), bubble.at(16, 32, 3) + 20);
}

TEST(BubbleSpriteTest, HasAClearMiddleABrightRimTwoLightsAndAWarmReflex)
{
    const Picture bubble = readPng(path("bubble.png"));
    ASSERT_EQ(bubble.width, 64);
    ASSERT_EQ(bubble.height, 64);
    double rim = 0;
    int rimTexels = 0;
    int middle = 0;
    int warm = 0;
    int upperLight = 0;
    int lowerLight = 0;
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            const double r = std::hypot(x - 31.5, y - 31.5);
            const int alpha = bubble.at(x, y, 3);
            if (r < 6) {
                middle = std::max(middle, alpha);
            } else if (r > 27 && r < 29) {
                rim += alpha;
                ++rimTexels;
            }
            warm += alpha > 60 && bubble.at(x, y, 0) > bubble.at(x, y, 2) + 40 ? 1 : 0;
            const bool bright = r < 25 && alpha > 200 && bubble.at(x, y, 2) > 240;
            upperLight += bright && x < 32 && y < 32 ? 1 : 0;
            lowerLight += bright && x >= 32 && y >= 32 ? 1 : 0;
        }
    }
    EXPECT_LT(middle, 26);
    EXPECT_GT(rim / rimTexels, 120);
    EXPECT_GT(warm, 30);
    EXPECT_GT(upperLight, 15);
    EXPECT_GT(lowerLight, 2);
    EXPECT_GT(upperLight, lowerLight);
}

TEST(SquidPictureTest, IsTwoHundredAndFiftySixTexelsWide)
{
    const Picture squid = readPng(path("squid.png"));
    EXPECT_EQ(squid.width, 256);
    EXPECT_EQ(squid.height, 256);
}

TEST(CubeMapTest, IsASmallTrueColorPicture)
{
    const Picture map = readPng(path("cube.png"));
    EXPECT_EQ(map.width, 64);
    EXPECT_EQ(map.height, 64);
    EXPECT_EQ(map.bitDepth, 8);
    EXPECT_EQ(map.colorType, PNG_COLOR_TYPE_RGB);
}

} // namespace
