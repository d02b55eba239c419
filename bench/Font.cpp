// Making a font ready to write with.

#include "Context.h"
#include "Job.h"
#include "Peers.h"

#include "FreeType.h"

#include <memory>
#include <string>
#include <vector>

#include <ft2build.h>
// The macros that name FreeType's other headers come from ft2build.h.
#include FT_FREETYPE_H
#include FT_GLYPH_H

namespace {

constexpr const char* FONT = "fonts/ChalkboardBold.ttf";
constexpr unsigned CHARACTERS = 128;

/// The calls alone: each glyph loaded and rendered, each texture and display list made, of blank
/// pixels.
void makeBare(unsigned height)
{
    FT_Library library = nullptr;
    FT_Init_FreeType(&library);
    FT_Face face = nullptr;
    FT_New_Face(library, FONT, 0, &face);
    FT_Set_Char_Size(face, static_cast<FT_F26Dot6>(height) * 64,
                     static_cast<FT_F26Dot6>(height) * 64, 96, 96);
    GLuint textures[CHARACTERS];
    const GLuint lists = glGenLists(CHARACTERS);
    glGenTextures(CHARACTERS, textures);
    const std::vector<unsigned char> blank(1 << 16);
    for (unsigned c = 0; c < CHARACTERS; ++c) {
        FT_Load_Glyph(face, FT_Get_Char_Index(face, c), FT_LOAD_DEFAULT);
        FT_Glyph glyph = nullptr;
        FT_Get_Glyph(face->glyph, &glyph);
        FT_Glyph_To_Bitmap(&glyph, FT_RENDER_MODE_NORMAL, nullptr, 1);
        const FT_Bitmap& bitmap = reinterpret_cast<FT_BitmapGlyph>(glyph)->bitmap;
        const int width = freetype::next_p2(static_cast<int>(bitmap.width));
        const int rows = freetype::next_p2(static_cast<int>(bitmap.rows));
        FT_Done_Glyph(glyph);

        glBindTexture(GL_TEXTURE_2D, textures[c]);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, rows, 0, GL_LUMINANCE_ALPHA,
                     GL_UNSIGNED_BYTE, blank.data());
        glNewList(lists + c, GL_COMPILE);
        glBindTexture(GL_TEXTURE_2D, textures[c]);
        glTranslatef(1, 0, 0);
        glPushMatrix();
        glTranslatef(0, 1, 0);
        glBegin(GL_QUADS);
        for (int corner = 0; corner < 4; ++corner) {
            glTexCoord2f(0, 0);
            glVertex2f(0, 0);
        }
        glEnd();
        glPopMatrix();
        glTranslatef(1, 0, 0);
        glEndList();
    }
    glDeleteLists(lists, CHARACTERS);
    glDeleteTextures(CHARACTERS, textures);
    FT_Done_Face(face);
    FT_Done_FreeType(library);
}

bench::Job font(const std::string& name, unsigned height)
{
    bench::makeContext();
    bench::Job job = {name,
                      "font",
                      1,
                      {{.name = "kelpix",
                        .run =
                            [height] {
                                freetype::font_data font;
                                font.init(FONT, height);
                                font.clean();
                            }},
                       {.name = "lower bound", .run = [height] { makeBare(height); }}}};
    bench::append(job.contenders, bench::peers::fonts(FONT, height));
    return job;
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(
        argc, argv,
        {[] { return font("font, height 12", 12); }, [] { return font("font, height 48", 48); }});
}
