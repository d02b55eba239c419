#include "FontFile.h"

#include "ErrorOf.h"
#include "FontSeed.h"

#include <ft2build.h>
// The macros that name FreeType's other headers come from ft2build.h.
#include FT_FREETYPE_H
#include FT_FONT_FORMATS_H

#include <algorithm>
#include <gtest/gtest.h>
#include <stdexcept>

namespace {

constexpr const char* FONT = KELPIX_FONT_FILE;
constexpr const char* TOO_LARGE = "FT_Glyph_To_Bitmap failed";

class CoverageTest : public testing::Test {
protected:
    CoverageTest() { EXPECT_EQ(FT_Init_FreeType(&library), 0); }
    ~CoverageTest() override { FT_Done_FreeType(library); }

    Bytes coverage(unsigned char* pixels, unsigned width, unsigned rows, int pitch,
                   FT_Pixel_Mode mode) const
    {
        FT_Bitmap bitmap = {};
        bitmap.buffer = pixels;
        bitmap.width = width;
        bitmap.rows = rows;
        bitmap.pitch = pitch;
        bitmap.pixel_mode = static_cast<unsigned char>(mode);
        bitmap.num_grays = 256;
        return FontFile::coverageOf(library, bitmap);
    }

    FT_Library library = nullptr;
};

TEST_F(CoverageTest, GrayRowsAreTakenWithoutTheirPadding)
{
    Bytes bytes = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(coverage(bytes.data(), 2, 2, 4, FT_PIXEL_MODE_GRAY), (Bytes{1, 2, 3, 4}));
}

TEST_F(CoverageTest, ABitmapWhoseLastRowComesFirstIsTurned)
{
    Bytes bytes = {1, 2, 0, 0, 3, 4, 0, 0};
    EXPECT_EQ(coverage(bytes.data(), 2, 2, -4, FT_PIXEL_MODE_GRAY), (Bytes{3, 4, 1, 2}));
}

TEST_F(CoverageTest, PixelsOfFewBitsCoverTheWholeRange)
{
    Bytes mono = {0b10100000, 0b01000000};
    EXPECT_EQ(coverage(mono.data(), 4, 2, 1, FT_PIXEL_MODE_MONO),
              (Bytes{255, 0, 255, 0, 0, 255, 0, 0}));
    Bytes two = {0b00011011};
    EXPECT_EQ(coverage(two.data(), 4, 1, 1, FT_PIXEL_MODE_GRAY2), (Bytes{0, 85, 170, 255}));
}

TEST_F(CoverageTest, ABitmapOfAnUnknownKindIsAnError)
{
    Bytes bytes = {1};
    EXPECT_THROW(coverage(bytes.data(), 1, 1, 1, FT_PIXEL_MODE_NONE), std::runtime_error);
}

TEST_F(CoverageTest, ABitmapWithoutABufferIsEmpty)
{
    for (const FT_Pixel_Mode mode : {FT_PIXEL_MODE_GRAY, FT_PIXEL_MODE_MONO}) {
        EXPECT_TRUE(coverage(nullptr, 8, 16, 8, mode).empty());
        EXPECT_TRUE(coverage(nullptr, 8, 16, -8, mode).empty());
    }
    EXPECT_TRUE(coverage(nullptr, 0, 0, 0, FT_PIXEL_MODE_NONE).empty());
}

/// A kind of font, and the size of its letter A at 12 points.
struct Kind {
    const char* seed;
    const char* format; ///< FreeType's name of it
    int columns;
    int rows;
    long advance;
};

class KindOfFontTest : public testing::TestWithParam<Kind> {};

TEST_P(KindOfFontTest, IsRead)
{
    const Kind& kind = GetParam();
    const TempPath path(".font");
    path.write(fontSeed(kind.seed));

    FT_Library library = nullptr;
    FT_Face face = nullptr;
    ASSERT_EQ(FT_Init_FreeType(&library), 0);
    ASSERT_EQ(FT_New_Face(library, path.name(), 0, &face), 0);
    EXPECT_STREQ(FT_Get_Font_Format(face), kind.format);
    FT_Done_FreeType(library);

    FontFile font(path.name(), 12);
    const Glyph& glyph = font.glyph('A');
    EXPECT_EQ(glyph.columns, kind.columns);
    EXPECT_EQ(glyph.rows, kind.rows);
    EXPECT_EQ(glyph.advance, kind.advance);
    EXPECT_EQ(glyph.coverage.size(), static_cast<std::size_t>(kind.columns * kind.rows));
}

// An em has 16 pixels and 64 units. A is 48 units wide and high with an advance of 56; in bitmap
// fonts it has 8 by 8 pixels and an advance of 9.
INSTANTIATE_TEST_SUITE_P(
    Seeds, KindOfFontTest,
    testing::Values(Kind{"truetype", "TrueType", 12, 12, 14},
                    Kind{"truetype-bitmap", "TrueType", 8, 8, 9},
                    Kind{"woff", "TrueType", 12, 12, 14}, Kind{"opentype", "CFF", 12, 12, 14},
                    Kind{"cff", "CFF", 12, 12, 5}, Kind{"type1", "Type 1", 12, 12, 14},
                    Kind{"type1-binary", "Type 1", 12, 12, 14},
                    Kind{"cid", "CID Type 1", 12, 12, 14}, Kind{"type42", "Type 42", 12, 12, 14},
                    Kind{"pfr", "PFR", 12, 12, 14}, Kind{"bdf", "BDF", 8, 8, 9},
                    Kind{"bdf-no-bitmap", "BDF", 0, 0, 9}, Kind{"bdf-shortest", "BDF", 0, 0, 8},
                    Kind{"bdf-wide", "BDF", 300, 8, 9}, Kind{"pcf", "PCF", 8, 8, 9},
                    Kind{"pcf-gzip", "PCF", 8, 8, 9}, Kind{"windows", "Windows FNT", 8, 16, 8}),
    [](const auto& param) {
        std::string name = param.param.seed;
        std::replace(name.begin(), name.end(), '-', '_');
        return name;
    });

TEST(FontFileTest, KnowsItsFamilyAndItsCharacters)
{
    const FontFile font(FONT, 12);
    EXPECT_EQ(font.family(), "Comic Neue");
    EXPECT_TRUE(font.has('A'));
    EXPECT_FALSE(font.has(1));
}

TEST(FontFileTest, AHeightOf1500PointsIsRead)
{
    FontFile font(FONT, 1500);
    for (unsigned c = 0; c < 128; ++c) {
        const int columns = font.glyph(c).columns;
        if (c == 'W') {
            EXPECT_GT(columns, 1500);
        }
    }
}

/// A bitmap font whose glyphs all have so many columns and rows, all pixels set.
Bytes fontOf(int columns, int rows)
{
    const std::string size = std::to_string(columns) + " " + std::to_string(rows);
    std::string font =
        "STARTFONT 2.1\nFONT -s-s-m-r-normal--16-120-96-96-c-100-iso10646-1\nSIZE 12 96 96\n"
        "FONTBOUNDINGBOX " +
        size +
        " 0 0\nSTARTPROPERTIES 2\nFONT_ASCENT 16\nFONT_DESCENT 0\nENDPROPERTIES\n"
        "CHARS 1\nSTARTCHAR A\nENCODING 0\nDWIDTH 9 0\nBBX " +
        size + " 0 0\nBITMAP\n";
    for (int row = 0; row < rows; ++row) {
        font += std::string(static_cast<std::size_t>((columns + 7) / 8 * 2), 'F') + "\n";
    }
    font += "ENDCHAR\nENDFONT\n";
    return {font.begin(), font.end()};
}

TEST(FontFileTest, ABitmapWithoutColumnsOrRowsKeepsItsOtherSide)
{
    const TempPath path(".bdf");
    path.write(fontOf(8, 0));
    const Glyph flat = FontFile(path.name(), 12).glyph('A');
    EXPECT_EQ(flat.columns, 8);
    EXPECT_EQ(flat.rows, 0);
    path.write(fontOf(0, 8));
    const Glyph narrow = FontFile(path.name(), 12).glyph('A');
    EXPECT_EQ(narrow.columns, 0);
    EXPECT_EQ(narrow.rows, 8);
    EXPECT_EQ(narrow.top, 8);
}

TEST(FontFileTest, TheLongestSideOfAGlyphHas4096Pixels)
{
    const TempPath path(".bdf");
    path.write(fontOf(4096, 1));
    EXPECT_EQ(FontFile(path.name(), 12).glyph('A').columns, 4096);
    path.write(fontOf(4097, 1));
    FontFile font(path.name(), 12);
    EXPECT_EQ(errorOf([&] { font.glyph('A'); }), TOO_LARGE);
    path.write(fontOf(1, 4096));
    EXPECT_EQ(FontFile(path.name(), 12).glyph('A').rows, 4096);
    path.write(fontOf(1, 4097));
    FontFile high(path.name(), 12);
    EXPECT_EQ(errorOf([&] { high.glyph('A'); }), TOO_LARGE);
}

TEST(FontFileTest, TheTexturesOfAllGlyphsTogetherAreBounded)
{
    // A texture for 2049 columns has 4096 texels in a row: 131072 of these fit exactly.
    const TempPath path(".bdf");
    path.write(fontOf(2049, 1));
    FontFile font(path.name(), 12);
    for (int i = 0; i < 131072; ++i) {
        font.glyph('A');
    }
    EXPECT_EQ(errorOf([&] { font.glyph('A'); }), TOO_LARGE);
}

TEST(FontFileTest, ACollectionWhoseFontLiesBehindItsEndIsRefused)
{
    Bytes font = {'t', 't', 'c', 'f', 0, 1, 0, 0, 0, 0, 0, 1, 0x7f, 0xff, 0xff, 0xff};
    font.resize(64);
    const TempPath path(".ttc");
    path.write(font);
    EXPECT_EQ(errorOf([&] { FontFile(path.name(), 12); }),
              "FT_New_Face failed (there is probably a problem with your font file)");
}

TEST(FontFileTest, AFileMayEndWithItsGlyphs)
{
    // FreeType passes over the glyphs at first, to the end of the file.
    Bytes font = fontSeed("cff");
    const Bytes size = {28, 0, 4}; // of the private dictionary, which is the last part of the file
    const auto place = std::search(font.begin(), font.end(), size.begin(), size.end());
    ASSERT_NE(place, font.end());
    place[2] = 0;
    font.resize(font.size() - 4);
    const TempPath path(".cff");
    path.write(font);
    EXPECT_EQ(FontFile(path.name(), 12).glyph('A').columns, 12);
}

} // namespace
