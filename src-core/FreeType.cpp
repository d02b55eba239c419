#include "FreeType.h"

#include "FontFile.h"

#include <GL/glu.h>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace {

constexpr unsigned CHARACTERS = 128;

/// Loads the image of a glyph's texture, whose sides are powers of two, and leaves it bound.
void uploadGlyph(GLuint texture, const std::vector<unsigned char>& image, int width, int height)
{
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    // Rows are not padded: a row of an image one texel wide has two bytes.
    GLint alignment = 0;
    glGetIntegerv(GL_UNPACK_ALIGNMENT, &alignment);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE,
                 image.data());
    glPixelStorei(GL_UNPACK_ALIGNMENT, alignment);
}

/// The quad of a glyph's bitmap. The bitmap's first row is the top of the glyph.
void drawQuad(float columns, float rows, float sx, float sy)
{
    glBegin(GL_QUADS);
    glTexCoord2f(0, 0);
    glVertex2f(0, rows);
    glTexCoord2f(0, sy);
    glVertex2f(0, 0);
    glTexCoord2f(sx, sy);
    glVertex2f(columns, 0);
    glTexCoord2f(sx, 0);
    glVertex2f(columns, rows);
    glEnd();
}

void makeTextureAndList(const Glyph& glyph, GLuint texture, GLuint list)
{
    const int width = freetype::next_p2(glyph.columns);
    const int height = freetype::next_p2(glyph.rows);
    uploadGlyph(texture, freetype::expand_bitmap(glyph), width, height);

    glNewList(list, GL_COMPILE);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTranslatef(static_cast<float>(glyph.left), 0, 0);
    glPushMatrix();
    glTranslatef(0, static_cast<float>(glyph.top - glyph.rows), 0);
    const auto columns = static_cast<float>(glyph.columns);
    const auto rows = static_cast<float>(glyph.rows);
    drawQuad(columns, rows, columns / static_cast<float>(width), rows / static_cast<float>(height));
    glPopMatrix();
    glTranslatef(static_cast<float>(glyph.advance), 0, 0);
    glEndList();
}

/// Draws each line of the text, the first one at (x, y), with the font's lists.
void drawLines(std::string_view text, float x, float y, float lineHeight)
{
    float model[16];
    glGetFloatv(GL_MODELVIEW_MATRIX, model);
    std::size_t start = 0;
    for (int i = 0; start <= text.size(); ++i) {
        const std::string_view line = text.substr(start, text.find('\n', start) - start);
        glPushMatrix();
        glLoadIdentity();
        glTranslatef(x, y - lineHeight * static_cast<float>(i), 0);
        glMultMatrixf(model);
        glCallLists(static_cast<GLsizei>(line.size()), GL_UNSIGNED_BYTE, line.data());
        glPopMatrix();
        start += line.size() + 1;
    }
}

} // namespace

namespace freetype {

void font_data::init(const char* fname, unsigned int height)
{
    auto* names = new GLuint[CHARACTERS]{};
    delete[] textures;
    textures = names;
    h = static_cast<float>(height);

    FontFile font(fname, height);
    list_base = glGenLists(CHARACTERS);
    glGenTextures(CHARACTERS, textures);
    for (unsigned c = 0; c < CHARACTERS; ++c) {
        makeTextureAndList(font.glyph(c), textures[c], list_base + c);
    }
}

void font_data::clean()
{
    if (list_base != 0) {
        glDeleteLists(list_base, CHARACTERS);
        list_base = 0;
    }
    if (textures != nullptr) {
        glDeleteTextures(CHARACTERS, textures);
        delete[] textures;
        textures = nullptr;
    }
}

void print(int mode, const font_data& font, float x, float y, const char* fmt, ...)
{
    if (mode == 1) {
        pushScreenCoordinateMatrix();
    }
    const float lineHeight = font.h / 0.63f;

    char text[256] = "";
    if (fmt != nullptr) {
        std::va_list arguments;
        va_start(arguments, fmt);
        std::vsnprintf(text, sizeof text, fmt, arguments);
        va_end(arguments);
    }

    glPushAttrib(GL_LIST_BIT | GL_CURRENT_BIT | GL_ENABLE_BIT | GL_TRANSFORM_BIT);
    glMatrixMode(GL_MODELVIEW);
    glDisable(GL_LIGHTING);
    glEnable(GL_TEXTURE_2D);
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    if (mode == 0) {
        glPushMatrix();
        glTranslatef(-10 * static_cast<float>(std::strlen(text)), -10, 0);
    }
    glListBase(font.list_base);
    drawLines(text, x, y, lineHeight);
    if (mode == 0) {
        glPopMatrix();
    }
    glPopAttrib();
    // After every mode, see FreeType.h.
    pop_projection_matrix();
}

int next_p2(int a)
{
    constexpr int LARGEST = 1 << 30;
    int power = 1;
    while (power < a && power < LARGEST) {
        power *= 2;
    }
    return power;
}

void make_dlist(FT_FaceRec_* face, char ch, GLuint list_base, const GLuint* tex_base)
{
    const auto character = static_cast<unsigned char>(ch);
    if (character >= CHARACTERS) {
        return;
    }
    makeTextureAndList(FontFile::render(face, character), tex_base[character],
                       list_base + character);
}

std::vector<unsigned char> expand_bitmap(const Glyph& glyph)
{
    const auto columns = static_cast<std::size_t>(glyph.columns);
    const auto rows = static_cast<std::size_t>(glyph.rows);
    const auto width = static_cast<std::size_t>(next_p2(glyph.columns));
    const auto height = static_cast<std::size_t>(next_p2(glyph.rows));
    std::vector<unsigned char> image(2 * width * height);
    const unsigned char* in = glyph.coverage.data();
    for (std::size_t j = 0; j < rows; ++j) {
        unsigned char* texel = image.data() + 2 * width * j;
        for (std::size_t i = 0; i < columns; ++i) {
            *texel++ = *in;
            *texel++ = *in++;
        }
    }
    return image;
}

void pushScreenCoordinateMatrix()
{
    glPushAttrib(GL_TRANSFORM_BIT);
    GLint viewport[4]; // x, y, width, height
    glGetIntegerv(GL_VIEWPORT, viewport);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    gluOrtho2D(viewport[0], viewport[2], viewport[1], viewport[3]);
    glPopAttrib();
}

void pop_projection_matrix()
{
    glPushAttrib(GL_TRANSFORM_BIT);
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glPopAttrib();
}

} // namespace freetype
