#include "Noise.h"
#include "Random.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>

namespace {

using media::Point;

TEST(RandomTest, GivesTheSameNumbersForTheSameSeedAndOthersForAnother)
{
    media::Random a(5, 2);
    media::Random b(5, 2);
    media::Random c(6, 2);
    media::Random d(5, 3);
    for (int i = 0; i < 10; ++i) {
        const auto n = a.next();
        EXPECT_EQ(n, b.next());
        EXPECT_NE(n, c.next());
        EXPECT_NE(n, d.next());
    }
}

TEST(RandomTest, FollowsSplitMix64)
{
    // The generator written out from its description, from the same state.
    std::uint64_t state = 5 * 0x9E3779B97F4A7C15u;
    media::Random random(5);
    const auto reference = [&state] {
        std::uint64_t z = state += 0x9E3779B97F4A7C15u;
        z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9u;
        z = (z ^ z >> 27) * 0x94D049BB133111EBu;
        return z ^ z >> 31;
    };
    reference();
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(random.next(), reference());
    }
}

TEST(RandomTest, SpreadsEvenlyOverItsRanges)
{
    media::Random random(1);
    std::array<int, 7> counts{};
    double sum = 0;
    for (int i = 0; i < 70000; ++i) {
        const float u = random.unit();
        ASSERT_TRUE(u >= 0 && u < 1);
        sum += static_cast<double>(u);
        ++counts[static_cast<std::size_t>(random.below(7))];
        const float v = random.between(-2, 3);
        ASSERT_TRUE(v >= -2 && v < 3);
    }
    EXPECT_NEAR(sum / 70000, 0.5, 0.01);
    for (const int count : counts) {
        EXPECT_NEAR(count, 10000, 400);
    }
}

TEST(NoiseTest, IsSmoothAndStaysBetweenNoughtAndOne)
{
    float before = media::noise(Point{-5, 0.3f}, 1);
    for (float x = -5; x < 5; x += 0.01f) {
        const float v = media::noise(Point{x, 0.3f}, 1);
        EXPECT_TRUE(v >= 0 && v <= 1);
        EXPECT_LT(std::abs(v - before), 0.03f);
        before = v;
        const float f = media::fractal(Point{x, 2.7f}, 4, 1);
        EXPECT_TRUE(f >= 0 && f <= 1);
    }
}

TEST(NoiseTest, DependsOnItsSeed)
{
    int different = 0;
    for (int i = 0; i < 20; ++i) {
        const Point p{static_cast<float>(i) * 0.77f, 0.4f};
        different += media::noise(p, 1) != media::noise(p, 2) ? 1 : 0;
    }
    EXPECT_GT(different, 15);
}

TEST(NoiseTest, MeetsTheHashInTheCornersOfTheGrid)
{
    const float corner = static_cast<float>(media::hash(3, -4, 9) >> 8) / 16777216.0f;
    EXPECT_EQ(media::noise(Point{3, -4}, 9), corner);
}

TEST(CellsTest, AgreeWithASearchOverManyCells)
{
    for (int n = 0; n < 200; ++n) {
        const Point p{static_cast<float>(n) * 0.173f - 9, static_cast<float>(n) * 0.317f - 20};
        float nearest = 99;
        for (int y = -45; y < 60; ++y) {
            for (int x = -20; x < 40; ++x) {
                const auto id = media::hash(x, y, 4);
                const Point at{static_cast<float>(x) + static_cast<float>(id & 0xFFFFu) / 65536.0f,
                               static_cast<float>(y) + static_cast<float>(id >> 16) / 65536.0f};
                nearest = std::min(nearest, media::length(at - p));
            }
        }
        const media::Cells found = media::cells(p, 4);
        EXPECT_NEAR(found.nearest, nearest, 1e-5f);
        EXPECT_GE(found.second, found.nearest);
    }
}

TEST(CausticsTest, AreAThinNetOfLight)
{
    int bright = 0;
    int dark = 0;
    for (int i = 0; i < 10000; ++i) {
        const float v = media::caustics(
            Point{static_cast<float>(i % 100) * 0.1f, static_cast<float>(i / 100) * 0.1f}, 0.2f, 3);
        ASSERT_TRUE(v >= 0 && v <= 1);
        bright += v > 0.7f ? 1 : 0;
        dark += v < 0.3f ? 1 : 0;
    }
    EXPECT_GT(bright, 200);
    EXPECT_GT(dark, 3 * bright);
}

} // namespace
