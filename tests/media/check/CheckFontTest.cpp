#include "CheckFont.h"

#include "CheckedFolder.h"
#include "FontSeed.h"

namespace {

using media::checkFont;
using media::Mark;

constexpr const char* FONT = "fonts/ChalkboardBold.ttf";

TEST(CheckFontTest, TheSetIsFine)
{
    const CheckedFolder folder;
    EXPECT_THAT(checkFont(folder.path()), IsFine());
    EXPECT_EQ(checkFont(folder.path()).summary, "Comic Neue");
}

TEST(CheckFontTest, AMissingFontStopsTheScene)
{
    const CheckedFolder folder;
    folder.remove(FONT);
    EXPECT_THAT(checkFont(folder.path()), Says(Mark::stops, "is missing; the scene ends"));
    folder.makeFolder(FONT);
    EXPECT_THAT(checkFont(folder.path()), Says(Mark::stops, "is a folder"));
}

TEST(CheckFontTest, WhatFreeTypeCannotOpenStopsTheScene)
{
    const CheckedFolder folder;
    const std::string whole = folder.read(FONT);
    for (const std::string& bytes : {std::string(), std::string("no font"), whole.substr(0, 200)}) {
        folder.write(FONT, bytes);
        EXPECT_THAT(checkFont(folder.path()), Says(Mark::stops, "is no font"));
    }
}

TEST(CheckFontTest, AFontWithoutItsOutlinesStopsTheScene)
{
    const CheckedFolder folder;
    const std::string whole = folder.read(FONT);
    // The outlines of an OpenType font of this kind are in its table "CFF ".
    const std::size_t entry = whole.find("CFF ");
    ASSERT_NE(entry, std::string::npos);
    std::string bytes = whole;
    bytes.replace(entry, 4, "CFX ");
    folder.write(FONT, bytes);
    EXPECT_THAT(checkFont(folder.path()), SaysAlso(Mark::stops, "the scene ends"));
}

/// Appends a number, the high byte first.
void append(std::string& bytes, unsigned value, int count)
{
    while (count-- > 0) {
        bytes += static_cast<char>(value >> (8 * count));
    }
}

/// One of the fuzzer's fonts.
std::string seed(const std::string& name)
{
    const Bytes bytes = fontSeed(name);
    return {bytes.begin(), bytes.end()};
}

/// One of the fuzzer's fonts, with some of its text replaced.
std::string changedSeed(const std::string& name, const std::string& text, const std::string& other)
{
    std::string font = seed(name);
    const std::size_t place = font.find(text);
    EXPECT_NE(place, std::string::npos);
    return font.replace(place, text.size(), other);
}

TEST(CheckFontTest, AFontWithoutKnownCharactersDrawsItsFirstGlyph)
{
    // Neither FreeType nor the scene takes the code of a character for the number of a glyph then.
    const CheckedFolder folder;
    folder.write(FONT, seed("cid"));
    EXPECT_THAT(checkFont(folder.path()), Says(Mark::hint, "has no glyph for !"));
    folder.write(FONT, changedSeed("type42", "/A 1 def", "/no 1 def"));
    EXPECT_THAT(checkFont(folder.path()), Says(Mark::hint, "has no glyph for !"));
}

TEST(CheckFontTest, AGlyphThatIsTooLargeStopsTheScene)
{
    const CheckedFolder folder;
    folder.write(FONT, changedSeed("bdf", "BBX 8 8", "BBX 4096 8"));
    EXPECT_THAT(checkFont(folder.path()), Says(Mark::hint, "has no glyph for !"));
    folder.write(FONT, changedSeed("bdf", "BBX 8 8", "BBX 4097 8"));
    EXPECT_THAT(checkFont(folder.path()), Says(Mark::stops, "cannot be drawn (FT_Glyph_To_Bitmap"));
}

TEST(CheckFontTest, HintsAtMissingGlyphs)
{
    const CheckedFolder folder;
    std::string bytes = folder.read(FONT);
    // Another table of characters that knows the letter A alone, at the end of the file: version 0,
    // one subtable for the platform 3 with the encoding 1, which starts behind this and is of
    // format 4 with two segments.
    std::string table;
    append(table, 0, 2);
    append(table, 1, 2);
    append(table, 3, 2);
    append(table, 1, 2);
    append(table, 12, 4);
    for (const unsigned value :
         {4u, 32u, 0u, 4u, 4u, 1u, 0u, 65u, 0xffffu, 0u, 65u, 0xffffu, 0xffffu - 63u, 1u, 0u, 0u}) {
        append(table, value, 2);
    }
    const std::size_t entry = bytes.find("cmap");
    ASSERT_LT(entry, 400u);
    std::string place;
    append(place, static_cast<unsigned>(bytes.size()), 4);
    append(place, static_cast<unsigned>(table.size()), 4);
    bytes.replace(entry + 8, 8, place);
    folder.write(FONT, bytes + table);
    EXPECT_THAT(checkFont(folder.path()), Says(Mark::hint, "has no glyph for !\"#"));
}

} // namespace
