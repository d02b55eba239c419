#include "Printable.h"

#include <gtest/gtest.h>

namespace {

using Files::printable;

TEST(PrintableTest, TextStaysAsItIs)
{
    const std::string text = "data/Grün €\U0001F41F \\x41 ~.txt";
    EXPECT_EQ(printable(text), text);
    EXPECT_EQ(printable(""), "");
}

TEST(PrintableTest, ControlCharactersBecomeDigits)
{
    EXPECT_EQ(printable("a\nb\x1b[2J\t\x7f"), "a\\x0ab\\x1b[2J\\x09\\x7f");
    EXPECT_EQ(printable(std::string_view("a\0b", 3)), "a\\x00b");
    // U+009B starts a command as ESC [ does.
    EXPECT_EQ(printable("\u009b2J\u00a0"), "\\xc2\\x9b2J\u00a0");
}

TEST(PrintableTest, BytesThatAreNoTextBecomeDigits)
{
    EXPECT_EQ(printable("\x9b"
                        "2J"),
              "\\x9b2J");
    EXPECT_EQ(printable("\xc3"), "\\xc3");
    EXPECT_EQ(printable("\xc0\x9b"), "\\xc0\\x9b");          // overlong
    EXPECT_EQ(printable("\xe0\x82\x9b"), "\\xe0\\x82\\x9b"); // overlong
    EXPECT_EQ(printable("\xed\xa0\x80"), "\\xed\\xa0\\x80"); // a surrogate
    EXPECT_EQ(printable("\xe2\x82z"), "\\xe2\\x82z");
    EXPECT_EQ(printable("\xf0\x80\x80\x80"), "\\xf0\\x80\\x80\\x80");
    EXPECT_EQ(printable("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");
    EXPECT_EQ(printable("\xf0\x9f\x90z"), "\\xf0\\x9f\\x90z");
    EXPECT_EQ(printable("\xf5\x80\x80\x80"), "\\xf5\\x80\\x80\\x80"); // beyond U+10FFFF
    EXPECT_EQ(printable("\xff"), "\\xff");
}

TEST(PrintableTest, LinesStayLines)
{
    EXPECT_EQ(Files::printableLines("a\nb\r\x1b\n"), "a\nb\\x0d\\x1b\n");
}

} // namespace
