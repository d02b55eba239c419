#include "Sheet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using record::Picture;
using record::SECOND;
using record::Sheet;

TEST(RecordSheetTest, ShowsTheMiddlesOfFiveEqualPartsOfTheVoice)
{
    const Sheet sheet(120 * SECOND);
    EXPECT_EQ(sheet.about(), "the scene at 12.0, 36.0, 60.0, 84.0 and 108.0 s");
    // 40 steps a second.
    EXPECT_THAT(sheet.steps(), testing::ElementsAre(480, 1440, 2400, 3360, 4320));
    EXPECT_TRUE(sheet.shows(480));
    EXPECT_FALSE(sheet.shows(481));
}

TEST(RecordSheetTest, PutsMomentsSideBySideWithAGap)
{
    const Sheet sheet(10 * SECOND);
    Picture picture = Sheet::empty(1, 2);
    ASSERT_EQ(picture.width, 5 + 4 * 2);
    ASSERT_EQ(picture.height, 2);
    sheet.place({1, 2, {1, 2, 3, 4, 5, 6, 7, 8}}, sheet.steps()[1], picture);
    std::vector<std::uint8_t> expected(std::size_t{13} * 2 * 4, 0);
    for (std::uint8_t i = 0; i < 4; ++i) {
        expected[3 * 4 + i] = static_cast<std::uint8_t>(i + 1);
        expected[(13 + 3) * 4 + i] = static_cast<std::uint8_t>(i + 5);
    }
    EXPECT_EQ(picture.pixels, expected);
}

TEST(RecordSheetTest, MomentsOfAVeryShortVoiceAreTheSame)
{
    const Sheet sheet(0);
    EXPECT_THAT(sheet.steps(), testing::Each(0));
    Picture picture = Sheet::empty(1, 1);
    sheet.place({1, 1, {9, 9, 9, 9}}, 0, picture);
    for (const std::size_t x : {0U, 3U, 6U, 9U, 12U}) {
        EXPECT_EQ(picture.pixels[x * 4], 9) << x;
    }
}

} // namespace
