#include "TextWords.h"

#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace {

/// A file in memory.
class Text {
public:
    explicit Text(std::string text) : text_(std::move(text))
    {
        file_.reset(fmemopen(text_.data(), text_.size(), "r"));
    }

    operator std::FILE*() const { return file_.get(); }

private:
    std::string text_;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_{nullptr, std::fclose};
};

TEST(TextWordsTest, SixCharactersAreWhiteSpace)
{
    std::string spaces;
    for (int c = -1; c < 256; ++c) {
        if (Files::isSpace(c)) {
            spaces += static_cast<char>(c);
        }
    }
    EXPECT_EQ(spaces, "\t\n\v\f\r ");
    EXPECT_FALSE(Files::isSpace(EOF));
}

TEST(TextWordsTest, SkippingWhiteSpaceGivesTheCharacterAfterIt)
{
    const Text text(" \t\r\n\v\fab ");
    EXPECT_EQ(Files::skipSpace(text), 'a');
    EXPECT_EQ(Files::skipSpace(text), 'b');
    EXPECT_EQ(Files::skipSpace(text), EOF);
    EXPECT_NE(std::feof(text), 0);
}

TEST(TextWordsTest, WordsAreReadOneByOne)
{
    const Text text("  one\ttwo\n\nthree");
    std::array<char, 8> word{};
    for (const char* expected : {"one", "two", "three"}) {
        ASSERT_TRUE(Files::readWord(text, word));
        EXPECT_STREQ(word.data(), expected);
    }
    EXPECT_NE(std::feof(text), 0) << "the last word ends with the file";
    EXPECT_FALSE(Files::readWord(text, word));
    EXPECT_STREQ(word.data(), "three") << "without a word it stays as it was";
}

TEST(TextWordsTest, TheCharacterAfterAWordIsTakenToo)
{
    const Text text("one\n two");
    std::array<char, 8> word{};
    ASSERT_TRUE(Files::readWord(text, word));
    EXPECT_EQ(std::getc(text), ' ');
}

TEST(TextWordsTest, ALongWordIsCutAndTakenWhole)
{
    const Text text("123456789 next");
    std::array<char, 5> word;
    word.fill('#');
    ASSERT_TRUE(Files::readWord(text, word));
    EXPECT_STREQ(word.data(), "1234");
    ASSERT_TRUE(Files::readWord(text, word));
    EXPECT_STREQ(word.data(), "next");
    ASSERT_FALSE(Files::readWord(text, word));
}

TEST(TextWordsTest, AWordThatJustFitsIsWhole)
{
    const Text text("1234 x");
    std::array<char, 5> word;
    word.fill('#');
    ASSERT_TRUE(Files::readWord(text, word));
    EXPECT_STREQ(word.data(), "1234");
}

TEST(TextWordsTest, WithRoomForTheEndOnlyAWordIsEmpty)
{
    const Text text("word next");
    std::array<char, 1> word = {'#'};
    ASSERT_TRUE(Files::readWord(text, word));
    EXPECT_EQ(word[0], '\0');
    EXPECT_EQ(std::getc(text), 'n');
}

TEST(TextWordsTest, BytesOfAnyValueAreParts)
{
    const Text text("\xff\x80\x01 x");
    std::array<char, 8> word{};
    ASSERT_TRUE(Files::readWord(text, word));
    EXPECT_STREQ(word.data(), "\xff\x80\x01");
}

} // namespace
