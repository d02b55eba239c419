#include "MemoryWords.h"

#include <array>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

using Files::MemoryWords;
using Files::numberOf;

TEST(MemoryWordsTest, WordsAreReadWithTheirLines)
{
    MemoryWords words("one two\n\n three\n\nfour");
    std::array<char, 8> word{};
    for (const auto& [expected, line] :
         {std::pair{"one", 1L}, {"two", 1L}, {"three", 3L}, {"four", 5L}}) {
        ASSERT_TRUE(words.next(word));
        EXPECT_STREQ(word.data(), expected);
        EXPECT_EQ(words.line(), line) << expected;
    }
    EXPECT_FALSE(words.next(word));
    EXPECT_EQ(words.line(), 5);
}

TEST(MemoryWordsTest, TheEndOfATextIsInItsLastLine)
{
    for (const auto& [text, line] : {std::pair{"", 1L}, {"\n", 1L}, {"a\nb\n", 2L}, {"a\nb", 2L}}) {
        MemoryWords words(text);
        std::array<char, 8> word{};
        while (words.next(word)) {
        }
        EXPECT_EQ(words.line(), line) << text;
    }
}

TEST(MemoryWordsTest, APositionHasItsLineLater)
{
    MemoryWords words("a\nb c\nd");
    std::array<char, 8> word{};
    ASSERT_TRUE(words.next(word));
    ASSERT_TRUE(words.next(word));
    const std::size_t at = words.position();
    EXPECT_EQ(at, 4u);
    while (words.next(word)) {
    }
    EXPECT_EQ(words.lineAt(at), 2);
    EXPECT_EQ(words.lineAt(1000), 3) << "beyond the end";
    EXPECT_EQ(words.lineAt(at), 2) << "and back";
    EXPECT_EQ(words.lineAt(0), 1);
}

TEST(MemoryWordsTest, ANulDoesNotEndTheText)
{
    MemoryWords words(std::string_view("a\0b\nc", 5));
    std::array<char, 8> word{};
    ASSERT_TRUE(words.next(word));
    EXPECT_EQ(std::string(word.data(), 3), std::string("a\0b", 3));
    ASSERT_TRUE(words.next(word));
    EXPECT_STREQ(word.data(), "c");
}

TEST(MemoryWordsTest, WholeWordsAreNumbers)
{
    int whole = 0;
    EXPECT_TRUE(numberOf("-12", whole) && whole == -12);
    EXPECT_TRUE(numberOf("+7", whole) && whole == 7);
    EXPECT_TRUE(numberOf("2147483647", whole) && whole == std::numeric_limits<int>::max());
    float real = 0;
    EXPECT_TRUE(numberOf("0.1", real) && real == 0.1f);
    EXPECT_TRUE(numberOf("-.5", real) && real == -0.5f);
    EXPECT_TRUE(numberOf("+2e3", real) && real == 2000);
}

TEST(MemoryWordsTest, OtherWordsAreNoNumbersAndChangeNothing)
{
    int whole = 5;
    for (const char* word : {"", "+", "-", "+-1", "++1", "1x", "x1", " 1", "1 ", "1.0", "1e2",
                             "0x10", "2147483648", "99999999999999999999"}) {
        EXPECT_FALSE(numberOf(word, whole)) << word;
    }
    EXPECT_EQ(whole, 5);
    float real = 5;
    for (const char* word : {"", ".", "1,5", "nan", "inf", "-infinity", "1e99", "1e", "0x1p3"}) {
        EXPECT_FALSE(numberOf(word, real)) << word;
    }
    EXPECT_EQ(real, 5);
    unsigned natural = 5;
    EXPECT_FALSE(numberOf("-1", natural));
    EXPECT_EQ(natural, 5u);
}

} // namespace
