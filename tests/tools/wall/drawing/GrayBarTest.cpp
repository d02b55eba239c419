#include "GrayBar.h"

#include <bit>
#include <gtest/gtest.h>

namespace {

TEST(GrayBarTest, NeighborsDifferInOneBit)
{
    // The first codes of the reflected code.
    const unsigned first[] = {0, 1, 3, 2, 6, 7, 5, 4, 12};
    for (unsigned number = 0; number < 9; ++number) {
        EXPECT_EQ(GrayBar::encode(number), first[number]);
    }
    for (unsigned number = 0; number < GrayBar::NUMBERS; ++number) {
        const unsigned next = (number + 1) % GrayBar::NUMBERS;
        ASSERT_EQ(std::popcount(GrayBar::encode(number) ^ GrayBar::encode(next)), 1) << number;
        ASSERT_EQ(GrayBar::decode(GrayBar::encode(number)), number);
    }
}

TEST(GrayBarTest, CellsLieInTheirFieldWithoutTouching)
{
    for (const auto& [width, height] : {std::pair{1920, 1080}, {480, 270}, {100, 300}, {60, 40}}) {
        const PixelRect field = GrayBar::field(width, height);
        EXPECT_GE(field.x, 0);
        EXPECT_LE(field.x + field.w, width);
        EXPECT_GE(field.y, 0);
        EXPECT_LE(field.y + field.h, height);
        int free = field.x;
        for (int bit = GrayBar::BITS - 1; bit >= 0; --bit) {
            const PixelRect cell = GrayBar::cell(width, height, bit);
            EXPECT_GT(cell.x, free) << width << " bit " << bit;
            EXPECT_GE(cell.w, 1);
            EXPECT_GE(cell.h, 1);
            EXPECT_GT(cell.y, field.y);
            EXPECT_LT(cell.y + cell.h, field.y + field.h);
            free = cell.x + cell.w;
        }
        EXPECT_LT(free, field.x + field.w);
    }
}

} // namespace
