#include "FreeType.h"

#include "FontFile.h"
#include "FontSeed.h"
#include "FontTest.h"
#include "ImageFiles.h"

#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <limits>
#include <random>
#include <stdexcept>
#include <sys/stat.h>

namespace {

using testing::Contains;

/// A bitmap font of 16 pixels: a blank, which stands for every missing glyph too, and
/// "A": 10 by 13 pixels, the first row and the first column set, 2 pixels right of the pen and 3
/// below the baseline.
Bytes bitmapFont()
{
    std::string font = "STARTFONT 2.1\n"
                       "FONT -test-test-medium-r-normal--16-120-96-96-c-100-iso10646-1\n"
                       "SIZE 12 96 96\n"
                       "FONTBOUNDINGBOX 10 16 0 -3\n"
                       "STARTPROPERTIES 5\n"
                       "PIXEL_SIZE 16\n"
                       "FONT_ASCENT 13\n"
                       "FONT_DESCENT 3\n"
                       "CHARSET_REGISTRY \"ISO10646\"\n"
                       "CHARSET_ENCODING \"1\"\n"
                       "ENDPROPERTIES\n"
                       "CHARS 2\n"
                       "STARTCHAR space\nENCODING 32\nSWIDTH 500 0\nDWIDTH 7 0\nBBX 0 0 0 0\n"
                       "BITMAP\nENDCHAR\n"
                       "STARTCHAR A\nENCODING 65\nSWIDTH 500 0\nDWIDTH 14 0\nBBX 10 13 2 -3\n"
                       "BITMAP\nFFC0\n";
    for (int row = 1; row < 13; ++row) {
        font += "8000\n";
    }
    font += "ENDCHAR\nENDFONT\n";
    return {font.begin(), font.end()};
}

class FreeTypeTest : public FontTest {
protected:
    /// The quads of a character drawn with the pen at window position (100, 100).
    static std::vector<Quad> quadsOf(const freetype::font_data& font, int character)
    {
        return quads([&font, character] {
            freetype::pushScreenCoordinateMatrix();
            glPushMatrix();
            glTranslatef(100, 100, 0);
            glCallList(font.list_base + static_cast<GLuint>(character));
            glPopMatrix();
            freetype::pop_projection_matrix();
        });
    }

    /// The RGBA bytes of a texture's level 0, and its size.
    static Bytes texels(GLuint texture, GLint& width, GLint& height)
    {
        glBindTexture(GL_TEXTURE_2D, texture);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &height);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        Bytes bytes(static_cast<std::size_t>(4 * width * height));
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
        glPixelStorei(GL_PACK_ALIGNMENT, 4);
        return bytes;
    }

    /// The text of the exception that init throws; empty without one.
    std::string failure(const char* file, unsigned height = POINTS)
    {
        try {
            font.init(file, height);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "";
    }
};

TEST(FreeTypeMathTest, NextPowerOfTwo)
{
    for (const auto& [a, expected] : {std::pair{0, 1},
                                      {1, 1},
                                      {2, 2},
                                      {3, 4},
                                      {4, 4},
                                      {5, 8},
                                      {13, 16},
                                      {16, 16},
                                      {17, 32},
                                      {-7, 1},
                                      {1 << 30, 1 << 30},
                                      {(1 << 30) + 1, 1 << 30}}) {
        EXPECT_EQ(freetype::next_p2(a), expected) << a;
    }
}

TEST(FreeTypeMathTest, ExpandedBitmapLiesInTheFirstCorner)
{
    Glyph glyph;
    glyph.columns = 10;
    glyph.rows = 13;
    glyph.coverage = noise(10, 13, 1).bytes;
    const Bytes image = freetype::expand_bitmap(glyph);
    ASSERT_EQ(image.size(), 2u * 16u * 16u);
    for (std::size_t j = 0; j < 16; ++j) {
        for (std::size_t i = 0; i < 16; ++i) {
            const int value = i < 10 && j < 13 ? glyph.coverage[10 * j + i] : 0;
            EXPECT_EQ(image[2 * (16 * j + i)], value);
            EXPECT_EQ(image[2 * (16 * j + i) + 1], value);
        }
    }
}

TEST(FreeTypeMathTest, AnEmptyBitmapExpandsToOneTexel)
{
    EXPECT_EQ(freetype::expand_bitmap(Glyph{}), Bytes(2, 0));
}

TEST_F(FreeTypeTest, StartsEmptyAndCleaningDoesNothing)
{
    EXPECT_EQ(font.textures, nullptr);
    EXPECT_EQ(font.list_base, 0u);
    const GLuint list = glGenLists(1);
    ASSERT_LT(list, 128u);
    glNewList(list, GL_COMPILE);
    glEndList();
    font.clean();
    font.clean();
    EXPECT_TRUE(glIsList(list));
    glDeleteLists(list, 1);
}

TEST_F(FreeTypeTest, InitMakesATextureAndAListForEachOf128Characters)
{
    font.init(FONT, POINTS);
    EXPECT_EQ(font.h, 12.0f);
    ASSERT_NE(font.textures, nullptr);
    for (GLuint c = 0; c < 128; ++c) {
        EXPECT_TRUE(glIsTexture(font.textures[c])) << c;
        EXPECT_TRUE(glIsList(font.list_base + c)) << c;
    }
    EXPECT_EQ(getInteger(GL_LIST_INDEX), 0);
    EXPECT_EQ(getInteger(GL_UNPACK_ALIGNMENT), 4);
}

TEST_F(FreeTypeTest, CleanDeletesTheTexturesAndLists)
{
    font.init(FONT, POINTS);
    const std::vector<GLuint> textures(font.textures, font.textures + 128);
    const GLuint lists = font.list_base;
    font.clean();
    EXPECT_EQ(font.textures, nullptr);
    for (GLuint c = 0; c < 128; ++c) {
        EXPECT_FALSE(glIsTexture(textures[c])) << c;
        EXPECT_FALSE(glIsList(lists + c)) << c;
    }
    font.clean();
}

TEST_F(FreeTypeTest, EveryGlyphIsTheOneThatTheLibraryRenders)
{
    for (const unsigned height : {9u, POINTS, 40u}) {
        font.init(FONT, height);
        Reference reference(height);
        for (int c = 0; c < 128; ++c) {
            FT_GlyphSlot glyph = reference.glyph(c);
            const auto columns = static_cast<int>(glyph->bitmap.width);
            const auto rows = static_cast<int>(glyph->bitmap.rows);
            GLint width = 0;
            GLint high = 0;
            const Bytes image = texels(font.textures[c], width, high);
            ASSERT_EQ(width, freetype::next_p2(columns)) << c;
            ASSERT_EQ(high, freetype::next_p2(rows)) << c;
            for (int y = 0; y < high; ++y) {
                for (int x = 0; x < width; ++x) {
                    const int value = x < columns && y < rows
                                          ? glyph->bitmap.buffer[y * glyph->bitmap.pitch + x]
                                          : 0;
                    for (int k = 0; k < 4; ++k) {
                        ASSERT_EQ(image[static_cast<std::size_t>(4 * (y * width + x) + k)], value)
                            << c;
                    }
                }
            }
            GLint internalFormat = 0;
            glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_INTERNAL_FORMAT, &internalFormat);
            EXPECT_EQ(internalFormat, GL_RGBA);
            for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER}) {
                GLint value = 0;
                glGetTexParameteriv(GL_TEXTURE_2D, filter, &value);
                EXPECT_EQ(value, GL_LINEAR);
            }

            const std::vector<Quad> drawn = quadsOf(font, c);
            if (columns > 0) {
                ASSERT_EQ(drawn.size(), 1u) << c;
                expectQuad(drawn[0], 100 + static_cast<float>(glyph->bitmap_left),
                           100 + static_cast<float>(glyph->bitmap_top - rows),
                           static_cast<float>(columns), static_cast<float>(rows));
                EXPECT_EQ(drawn[0][2].s, static_cast<float>(columns) / static_cast<float>(width));
                EXPECT_EQ(drawn[0][2].t, static_cast<float>(rows) / static_cast<float>(high));
            }

            glLoadIdentity();
            glCallList(font.list_base + static_cast<GLuint>(c));
            EXPECT_EQ(getInteger(GL_TEXTURE_BINDING_2D), static_cast<GLint>(font.textures[c]));
            EXPECT_EQ(getMatrix(GL_MODELVIEW_MATRIX)[12],
                      static_cast<float>(glyph->bitmap_left + (glyph->advance.x >> 6)));
            EXPECT_EQ(getMatrix(GL_MODELVIEW_MATRIX)[13], 0);
            glLoadIdentity();
        }
        font.clean();
    }
}

TEST_F(FreeTypeTest, AGlyphOf10By13PixelsGetsATextureOf16By16)
{
    const TempPath path(".bdf");
    path.write(bitmapFont());
    font.init(path.name(), POINTS);
    GLint width = 0;
    GLint height = 0;
    const Bytes image = texels(font.textures['A'], width, height);
    EXPECT_EQ(width, 16);
    EXPECT_EQ(height, 16);
    // The bitmap's bits become full coverage.
    EXPECT_EQ(Bytes(image.begin(), image.begin() + 40), Bytes(40, 255));
    EXPECT_EQ(Bytes(image.begin() + 40, image.begin() + 64), Bytes(24, 0));
    EXPECT_EQ(image[4 * 16], 255);
    EXPECT_EQ(image[4 * 16 + 4], 0);

    const std::vector<Quad> drawn = quadsOf(font, 'A');
    ASSERT_EQ(drawn.size(), 1u);
    expectQuad(drawn[0], 102, 97, 10, 13);
    const float expected[4][2] = {{0, 0}, {0, 0.8125f}, {0.625f, 0.8125f}, {0.625f, 0}};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(drawn[0][i].s, expected[i][0]) << "corner " << i;
        EXPECT_EQ(drawn[0][i].t, expected[i][1]) << "corner " << i;
    }
}

TEST_F(FreeTypeTest, ASpaceDrawsNothingAndMovesThePen)
{
    font.init(FONT, POINTS);
    Reference reference(POINTS);
    GLint width = 0;
    GLint height = 0;
    const Bytes image = texels(font.textures[' '], width, height);
    EXPECT_EQ(width, 1);
    EXPECT_EQ(height, 1);
    EXPECT_EQ(image, Bytes(4, 0));
    EXPECT_TRUE(quadsOf(font, ' ').empty());
    glCallList(font.list_base + ' ');
    const auto advance = static_cast<float>(reference.glyph(' ')->advance.x >> 6);
    EXPECT_GT(advance, 0);
    EXPECT_EQ(getMatrix(GL_MODELVIEW_MATRIX)[12], advance);
}

TEST_F(FreeTypeTest, GlyphsAreUploadedTightlyWhateverTheAlignment)
{
    glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
    font.init(FONT, 3);
    EXPECT_EQ(getInteger(GL_UNPACK_ALIGNMENT), 8);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    Reference reference(3);
    bool narrow = false;
    for (int c = 0; c < 128; ++c) {
        FT_GlyphSlot glyph = reference.glyph(c);
        GLint width = 0;
        GLint height = 0;
        const Bytes image = texels(font.textures[c], width, height);
        narrow = narrow || (width == 1 && height > 1);
        for (unsigned y = 0; y < glyph->bitmap.rows; ++y) {
            ASSERT_EQ(image[4 * y * static_cast<unsigned>(width)],
                      glyph->bitmap.buffer[y * glyph->bitmap.width])
                << c;
        }
    }
    EXPECT_TRUE(narrow) << "no glyph is one texel wide";
}

TEST_F(FreeTypeTest, AFileThatIsNoFontIsReportedByName)
{
    const std::string text = "FT_New_Face failed (there is probably a problem with your font file)";
    const TempPath missing(".ttf");
    const TempPath empty(".ttf");
    empty.write({});
    const TempPath foreign(".ttf");
    writePng(foreign, noise(2, 2, 3));
    const TempPath pipe(".ttf");
    ASSERT_EQ(mkfifo(pipe.name(), 0600), 0);
    EXPECT_EQ(failure(missing.name()), text);
    EXPECT_EQ(failure(empty.name()), text);
    EXPECT_EQ(failure(foreign.name()), text);
    EXPECT_EQ(failure(pipe.name()), text);
    EXPECT_EQ(failure(testing::TempDir().c_str()), text);
    EXPECT_EQ(failure(nullptr), text);
    EXPECT_FALSE(foreign.isOpen());
    font.clean();
    EXPECT_EQ(failure(FONT), "");
}

TEST_F(FreeTypeTest, AnInitThatFailsHalfWayCanBeCleanedAndRepeated)
{
    // Glyphs of so many pixels can be neither rendered nor, a little later, measured.
    EXPECT_EQ(failure(FONT, 40000), "FT_Glyph_To_Bitmap failed");
    EXPECT_NE(font.list_base, 0u);
    EXPECT_EQ(getInteger(GL_LIST_INDEX), 0);
    font.clean();
    EXPECT_EQ(failure(FONT, 49000), "FT_Get_Glyph failed");
    EXPECT_EQ(failure(FONT), "");
    EXPECT_TRUE(glIsList(font.list_base));
}

TEST_F(FreeTypeTest, NoHeightTakesMemoryWithoutBound)
{
    // Glyphs of 4096 pixels and less fit; those of an em of 13333 pixels and more do not.
    for (const unsigned height : {10000u, 20000u}) {
        EXPECT_EQ(failure(FONT, height), "FT_Glyph_To_Bitmap failed") << height;
        font.clean();
    }
    // FreeType takes 0 for 1. Heights that it refuses leave the glyphs without pixels.
    for (const unsigned height : {0u, 100000u, std::numeric_limits<unsigned>::max()}) {
        EXPECT_EQ(failure(FONT, height), "") << height;
        GLint width = 0;
        GLint rows = 0;
        texels(font.textures['A'], width, rows);
        EXPECT_LE(width * rows, 16 * 16) << height;
        font.clean();
    }
}

TEST_F(FreeTypeTest, AGlyphWithoutABitmapIsEmpty)
{
    // Both claim 8 pixels in each direction. FreeType gives no pixels for the second.
    const TempPath path(".bdf");
    path.write(fontSeed("bdf"));
    font.init(path.name(), POINTS);
    EXPECT_EQ(quadsOf(font, 'A').size(), 1u);
    font.clean();
    path.write(fontSeed("bdf-no-bitmap"));
    font.init(path.name(), POINTS);
    GLint width = 0;
    GLint height = 0;
    EXPECT_EQ(texels(font.textures['A'], width, height), Bytes(4, 0));
    EXPECT_EQ(width, 1);
    EXPECT_EQ(height, 1);
    EXPECT_TRUE(quadsOf(font, 'A').empty());
    glCallList(font.list_base + 'A');
    EXPECT_EQ(getMatrix(GL_MODELVIEW_MATRIX)[12], 9);
}

TEST_F(FreeTypeTest, ADamagedFontIsTakenOrRefused)
{
    std::mt19937 random(1);
    const TempPath path(".otf");
    std::vector<std::string> failures;
    std::ifstream file(FONT, std::ios::binary);
    const Bytes original{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    ASSERT_FALSE(original.empty());
    for (int n = 0; n < 60; ++n) {
        Bytes damaged = original;
        for (int k = 0; k < 20; ++k) {
            damaged[random() % damaged.size()] = static_cast<unsigned char>(random());
        }
        if (n % 4 == 0) {
            damaged.resize(random() % damaged.size() + 1);
        }
        path.write(damaged);
        failures.push_back(failure(path.name()));
        font.clean();
    }
    EXPECT_THAT(failures, Contains(""));
    EXPECT_THAT(failures, Contains("FT_Load_Glyph failed"));
}

TEST_F(FreeTypeTest, ASecondInitTakesTheNamesOfTheNewContext)
{
    font.init(FONT, POINTS);
    const GLuint lists = font.list_base;
    const std::vector<GLuint> textures(font.textures, font.textures + 128);
    font.init(FONT, 20);
    EXPECT_EQ(font.h, 20.0f);
    EXPECT_NE(font.list_base, lists);
    // What the first one made is its context's business.
    EXPECT_TRUE(glIsList(lists));
    EXPECT_TRUE(glIsTexture(textures[0]));
    glDeleteLists(lists, 128);
    glDeleteTextures(128, textures.data());
}

TEST_F(FreeTypeTest, ASingleCharacterIsMadeAsInitMakesIt)
{
    font.init(FONT, POINTS);
    const auto cornersOf = [this] {
        std::vector<float> numbers;
        for (const Quad& quad : quadsOf(font, 'A')) {
            for (const Corner& corner : quad) {
                numbers.insert(numbers.end(), {corner.x, corner.y});
            }
        }
        return numbers;
    };
    const std::vector<float> corners = cornersOf();
    GLint width = 0;
    GLint height = 0;
    const Bytes image = texels(font.textures['A'], width, height);
    glDeleteLists(font.list_base + 'A', 1);
    const unsigned char black[4] = {};
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, black);

    Reference reference(POINTS);
    freetype::make_dlist(reference.face, 'A', font.list_base, font.textures);
    EXPECT_EQ(cornersOf(), corners);
    EXPECT_EQ(texels(font.textures['A'], width, height), image);
}

TEST_F(FreeTypeTest, OnlyTheCharactersOf7BitsHaveLists)
{
    font.init(FONT, POINTS);
    Reference reference(POINTS);
    freetype::make_dlist(reference.face, static_cast<char>(200), font.list_base, font.textures);
    EXPECT_FALSE(glIsList(font.list_base + 200));
    EXPECT_FALSE(glIsList(font.list_base - 56));
}

TEST_F(FreeTypeTest, TheFirstRowOfABitmapIsTheTopOfTheGlyph)
{
    const TempPath path(".bdf");
    path.write(bitmapFont());
    font.init(path.name(), POINTS);
    freetype::print(1, font, 100, 100, "A");
    // The quad covers the pixels from (102, 97) to (112, 110).
    const Bytes white(4, 255);
    const Bytes black(4, 0);
    EXPECT_EQ(pixel(107, 109), white);
    EXPECT_EQ(pixel(107, 98), black);
    EXPECT_EQ(pixel(102, 98), white);
    EXPECT_EQ(pixel(101, 98), black);
    EXPECT_EQ(pixel(107, 110), black);
}

} // namespace
