#pragma once

#include "FreeType.h"
#include "GLTest.h"

#include <ft2build.h>
// The macros that name FreeType's other headers come from ft2build.h.
#include FT_FREETYPE_H

#include <algorithm>
#include <vector>

/// The font of the text tests (set in CMakeLists.txt), and its size in points.
inline constexpr const char* FONT = KELPIX_FONT_FILE;
inline constexpr unsigned POINTS = 12;

/// The font file opened by the test itself, at the size that init gives it.
class Reference {
public:
    explicit Reference(unsigned height)
    {
        EXPECT_EQ(FT_Init_FreeType(&library), 0);
        EXPECT_EQ(FT_New_Face(library, FONT, 0, &face), 0);
        // Points at 96 dots per inch.
        EXPECT_EQ(FT_Set_Char_Size(face, 64 * static_cast<FT_F26Dot6>(height), 0, 96, 96), 0);
    }
    Reference(const Reference&) = delete;
    Reference& operator=(const Reference&) = delete;
    ~Reference() { FT_Done_FreeType(library); }

    FT_GlyphSlot glyph(int character)
    {
        EXPECT_EQ(FT_Load_Char(face, static_cast<FT_ULong>(character), FT_LOAD_RENDER), 0);
        return face->glyph;
    }

    FT_Library library = nullptr;
    FT_Face face = nullptr;
};

/// What feedback tells of a character's quad.
struct Corner {
    float x, y; ///< window coordinates
    float s, t;
};
using Quad = std::vector<Corner>;

/// The fixture of the text tests: a font that is cleaned after each, and a look at what is drawn.
class FontTest : public GLTest {
protected:
    void TearDown() override
    {
        font.clean();
        GLTest::TearDown();
    }

    /// The quads that are not empty, with their corners once around from the upper left.
    template<typename Draw>
    static std::vector<Quad> quads(Draw draw)
    {
        glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
        const auto lines = Feedback::of(draw);
        glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
        std::vector<Quad> all;
        for (std::size_t i = 0; i + 3 < lines.size(); i += 4) {
            Quad quad;
            for (std::size_t k = 0; k < 4; ++k) {
                const Feedback::Vertex& v = lines[i + k].vertices[0];
                quad.push_back({v.x, v.y, v.texture[0], v.texture[1]});
            }
            const auto upperLeft =
                std::min_element(quad.begin(), quad.end(), [](const Corner& a, const Corner& b) {
                    return a.x - a.y < b.x - b.y;
                });
            std::rotate(quad.begin(), upperLeft, quad.end());
            if (quad[0].x != quad[2].x && quad[0].y != quad[2].y) {
                all.push_back(quad);
            }
        }
        return all;
    }

    static void expectQuad(const Quad& quad, float left, float bottom, float width, float height)
    {
        ASSERT_EQ(quad.size(), 4u);
        const float right = left + width;
        const float top = bottom + height;
        const float expected[4][2] = {{left, top}, {left, bottom}, {right, bottom}, {right, top}};
        for (std::size_t i = 0; i < 4; ++i) {
            EXPECT_NEAR(quad[i].x, expected[i][0], 1e-3) << "corner " << i;
            EXPECT_NEAR(quad[i].y, expected[i][1], 1e-3) << "corner " << i;
        }
    }

    freetype::font_data font;
};
