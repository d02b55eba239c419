#include "FreeType.h"

#include "FontTest.h"

namespace {

class FreeTypePrintTest : public FontTest {
protected:
    /// Expects a line of text: the glyphs' quads from the pen position on.
    static void expectText(const std::vector<Quad>& quads, std::size_t& next, Reference& reference,
                           const std::string& line, float penX, float penY)
    {
        for (const char c : line) {
            FT_GlyphSlot glyph = reference.glyph(c);
            const auto rows = static_cast<int>(glyph->bitmap.rows);
            penX += static_cast<float>(glyph->bitmap_left);
            if (rows > 0) {
                ASSERT_LT(next, quads.size());
                expectQuad(quads[next++], penX, penY + static_cast<float>(glyph->bitmap_top - rows),
                           static_cast<float>(glyph->bitmap.width), static_cast<float>(rows));
            }
            penX += static_cast<float>(glyph->advance.x >> 6);
        }
    }
};

TEST_F(FreeTypePrintTest, TheScreenMatrixSpansTheViewport)
{
    glMatrixMode(GL_TEXTURE);
    glViewport(10, 20, 300, 400);
    freetype::pushScreenCoordinateMatrix();
    EXPECT_EQ(getInteger(GL_MATRIX_MODE), GL_TEXTURE);
    EXPECT_EQ(getInteger(GL_PROJECTION_STACK_DEPTH), 2);
    // From the viewport's x to its width, from its y to its height.
    const std::vector<float> m = getMatrix(GL_PROJECTION_MATRIX);
    EXPECT_NEAR(m[0], 2.0 / (300 - 10), 1e-7);
    EXPECT_NEAR(m[5], 2.0 / (400 - 20), 1e-7);
    EXPECT_NEAR(m[12], -310.0 / 290, 1e-6);
    EXPECT_NEAR(m[13], -420.0 / 380, 1e-6);
    freetype::pop_projection_matrix();
    EXPECT_EQ(getInteger(GL_MATRIX_MODE), GL_TEXTURE);
    EXPECT_EQ(getInteger(GL_PROJECTION_STACK_DEPTH), 1);
    EXPECT_EQ(getInteger(GL_ATTRIB_STACK_DEPTH), 0);
}

TEST_F(FreeTypePrintTest, PrintDrawsLinesDownwardsInPixels)
{
    font.init(FONT, POINTS);
    Reference reference(POINTS);
    const auto drawn = quads([this] { freetype::print(1, font, 100, 200, "ab c\nd\n\ne"); });
    ASSERT_EQ(drawn.size(), 5u);
    std::size_t next = 0;
    const float lineHeight = 12 / 0.63f;
    expectText(drawn, next, reference, "ab c", 100, 200);
    expectText(drawn, next, reference, "d", 100, 200 - lineHeight);
    expectText(drawn, next, reference, "e", 100, 200 - 3 * lineHeight);
}

TEST_F(FreeTypePrintTest, ALineEndIsFollowedByAnEmptyLine)
{
    font.init(FONT, POINTS);
    Reference reference(POINTS);
    const auto drawn = quads([this] { freetype::print(1, font, 100, 200, "a\n"); });
    ASSERT_EQ(drawn.size(), 1u);
    std::size_t next = 0;
    expectText(drawn, next, reference, "a", 100, 200);
    EXPECT_TRUE(quads([this] { freetype::print(1, font, 100, 200, "%s", "\n\n"); }).empty());
}

TEST_F(FreeTypePrintTest, PrintFormatsItsArguments)
{
    font.init(FONT, POINTS);
    Reference reference(POINTS);
    const auto drawn =
        quads([this] { freetype::print(1, font, 10, 50, "%d-%.1f%s", 42, 2.5, "x"); });
    std::size_t next = 0;
    expectText(drawn, next, reference, "42-2.5x", 10, 50);
    EXPECT_EQ(next, drawn.size());
}

TEST_F(FreeTypePrintTest, PrintCutsALongTextAfter255Characters)
{
    font.init(FONT, POINTS);
    glViewport(0, 0, 8000, 740); // so that no character is clipped
    const std::string text(1000, 'i');
    const auto drawn = quads([&] { freetype::print(1, font, 0, 100, "%s", text.c_str()); });
    EXPECT_EQ(drawn.size(), 255u);
}

TEST_F(FreeTypePrintTest, TenThousandCharactersAreCutInEveryMode)
{
    font.init(FONT, POINTS);
    glViewport(0, 0, 8000, 740); // so that no character is clipped
    const std::string text(10000, 'i');
    const std::string lines(10000, '\n');
    for (const int mode : {1, 0, 2}) {
        // What print draws at the left edge, or where mode 0's shift by 255 characters takes it
        // there. Mode 1 pushes the matrix that it pops.
        const auto print = [&](const char* format, const char* argument) {
            return quads([&] {
                if (mode != 1) {
                    freetype::pushScreenCoordinateMatrix();
                }
                freetype::print(mode, font, mode == 0 ? 2550 : 0, 100, format, argument);
            });
        };
        for (const auto& drawn : {print("%s", text.c_str()), print(text.c_str(), nullptr)}) {
            EXPECT_EQ(drawn.size(), 255u) << mode;
        }
        EXPECT_TRUE(print("%s", lines.c_str()).empty()) << mode;
        EXPECT_TRUE(print(lines.c_str(), nullptr).empty()) << mode;
        EXPECT_EQ(getInteger(GL_PROJECTION_STACK_DEPTH), 1);
        EXPECT_EQ(getInteger(GL_MODELVIEW_STACK_DEPTH), 1);
        EXPECT_EQ(getInteger(GL_ATTRIB_STACK_DEPTH), 0);
    }
}

TEST_F(FreeTypePrintTest, ANullFormatIsAnEmptyText)
{
    font.init(FONT, POINTS);
    const char* nothing = nullptr;
    EXPECT_TRUE(quads([&] { freetype::print(1, font, 0, 0, nothing); }).empty());
    EXPECT_EQ(getInteger(GL_PROJECTION_STACK_DEPTH), 1);
}

TEST_F(FreeTypePrintTest, TheModelviewMatrixActsBeforeTheShiftToThePosition)
{
    font.init(FONT, POINTS);
    Reference reference(POINTS);
    FT_GlyphSlot glyph = reference.glyph('g');
    const auto rows = static_cast<int>(glyph->bitmap.rows);
    glTranslatef(5, 7, 0);
    glScalef(2, 3, 1);
    const std::vector<float> before = getMatrix(GL_MODELVIEW_MATRIX);
    const auto drawn = quads([this] { freetype::print(1, font, 100, 200, "g"); });
    ASSERT_EQ(drawn.size(), 1u);
    expectQuad(drawn[0], 105 + 2 * static_cast<float>(glyph->bitmap_left),
               207 + 3 * static_cast<float>(glyph->bitmap_top - rows),
               2 * static_cast<float>(glyph->bitmap.width), 3 * static_cast<float>(rows));
    EXPECT_EQ(getMatrix(GL_MODELVIEW_MATRIX), before);
    EXPECT_EQ(getInteger(GL_MODELVIEW_STACK_DEPTH), 1);
}

TEST_F(FreeTypePrintTest, Mode0ShiftsTheTextByItsWholeLength)
{
    font.init(FONT, POINTS);
    Reference reference(POINTS);
    const auto drawn = quads([this] {
        freetype::pushScreenCoordinateMatrix();
        freetype::print(0, font, 300, 200, "ab\nc");
    });
    ASSERT_EQ(drawn.size(), 3u);
    std::size_t next = 0;
    expectText(drawn, next, reference, "ab", 300 - 40, 200 - 10);
    expectText(drawn, next, reference, "c", 300 - 40, 200 - 10 - 12 / 0.63f);
    EXPECT_EQ(getInteger(GL_PROJECTION_STACK_DEPTH), 1);
    EXPECT_EQ(getInteger(GL_MODELVIEW_STACK_DEPTH), 1);
    EXPECT_EQ(getMatrix(GL_MODELVIEW_MATRIX)[12], 0);
}

TEST_F(FreeTypePrintTest, OtherModesDoNotShiftTheText)
{
    font.init(FONT, POINTS);
    Reference reference(POINTS);
    for (const int mode : {2, -1}) {
        const auto drawn = quads([this, mode] {
            freetype::pushScreenCoordinateMatrix();
            freetype::print(mode, font, 300, 200, "ab");
        });
        ASSERT_EQ(drawn.size(), 2u);
        std::size_t next = 0;
        expectText(drawn, next, reference, "ab", 300, 200);
        EXPECT_EQ(getInteger(GL_PROJECTION_STACK_DEPTH), 1);
    }
}

/// Deliberate: callers of the modes other than 1 push the projection matrix themselves.
TEST_F(FreeTypePrintTest, EveryModePopsTheProjectionMatrixOnce)
{
    font.init(FONT, POINTS);
    for (const auto& [mode, expected] : {std::pair{1, 3}, {0, 2}, {2, 2}}) {
        glMatrixMode(GL_PROJECTION);
        glPushMatrix();
        glPushMatrix();
        glMatrixMode(GL_MODELVIEW);
        freetype::print(mode, font, 0, 0, "a");
        EXPECT_EQ(getInteger(GL_PROJECTION_STACK_DEPTH), expected) << mode;
        glMatrixMode(GL_PROJECTION);
        while (getInteger(GL_PROJECTION_STACK_DEPTH) > 1) {
            glPopMatrix();
        }
        glMatrixMode(GL_MODELVIEW);
    }
}

TEST_F(FreeTypePrintTest, PrintRestoresTheStateButTheBlendFunction)
{
    font.init(FONT, POINTS);
    glEnable(GL_LIGHTING);
    glEnable(GL_DEPTH_TEST);
    glListBase(77);
    glTexCoord2f(0.25f, 0.5f);
    glMatrixMode(GL_TEXTURE);
    freetype::print(1, font, 100, 100, "text");
    float coordinates[4] = {};
    glGetFloatv(GL_CURRENT_TEXTURE_COORDS, coordinates);
    EXPECT_THAT(coordinates, testing::ElementsAre(0.25f, 0.5f, 0, 1));
    EXPECT_EQ(getInteger(GL_MATRIX_MODE), GL_TEXTURE);
    EXPECT_EQ(getInteger(GL_LIST_BASE), 77);
    EXPECT_TRUE(isEnabled(GL_LIGHTING));
    EXPECT_TRUE(isEnabled(GL_DEPTH_TEST));
    EXPECT_FALSE(isEnabled(GL_TEXTURE_2D));
    EXPECT_FALSE(isEnabled(GL_BLEND));
    EXPECT_EQ(getInteger(GL_ATTRIB_STACK_DEPTH), 0);
    EXPECT_EQ(getInteger(GL_BLEND_SRC), GL_SRC_ALPHA);
    EXPECT_EQ(getInteger(GL_BLEND_DST), GL_ONE_MINUS_SRC_ALPHA);
    glListBase(0);
}

} // namespace
