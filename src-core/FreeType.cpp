#include "FreeType.h"

#include <ft2build.h>
// The macros that name FreeType's other headers come from ft2build.h.
#include FT_FREETYPE_H
#include FT_BITMAP_H
#include FT_GLYPH_H

#include <GL/glu.h>
#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <sys/stat.h>

namespace {

constexpr unsigned CHARACTERS = 128;

/// The longest side of a glyph's bitmap, in pixels. A font may claim glyphs of any size, and each
/// of the 128 takes a texture of its own.
constexpr FT_Pos MAX_GLYPH_SIDE = 2048;

struct Release {
    void operator()(FT_Library library) const { FT_Done_FreeType(library); }
    void operator()(FT_Face face) const { FT_Done_Face(face); }
    void operator()(FT_Glyph glyph) const { FT_Done_Glyph(glyph); }
};
using LibraryHandle = std::unique_ptr<FT_LibraryRec_, Release>;
using FaceHandle = std::unique_ptr<FT_FaceRec_, Release>;
using GlyphHandle = std::unique_ptr<FT_GlyphRec_, Release>;

/// A bitmap of one byte to a pixel, made from another.
struct GreyBitmap {
    FT_Library library;
    FT_Bitmap bitmap = {};

    GreyBitmap(FT_Library lib, const FT_Bitmap& source) : library(lib)
    {
        FT_Bitmap_Init(&bitmap);
        if (FT_Bitmap_Convert(library, &source, &bitmap, 1) != 0) {
            throw std::runtime_error("FT_Bitmap_Convert failed");
        }
    }
    GreyBitmap(const GreyBitmap&) = delete;
    GreyBitmap& operator=(const GreyBitmap&) = delete;
    ~GreyBitmap() { FT_Bitmap_Done(library, &bitmap); }
};

LibraryHandle openLibrary()
{
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0) {
        throw std::runtime_error("FT_Init_FreeType failed");
    }
    return LibraryHandle(library);
}

FaceHandle openFace(FT_Library library, const char* fname)
{
    // Opening a pipe would block.
    struct stat status = {};
    const bool isFile = fname != nullptr && stat(fname, &status) == 0 && S_ISREG(status.st_mode);
    FT_Face face = nullptr;
    if (!isFile || FT_New_Face(library, fname, 0, &face) != 0) {
        throw std::runtime_error(
            "FT_New_Face failed (there is probably a problem with your font file)");
    }
    return FaceHandle(face);
}

/// Whether the bitmap of a glyph, rendered or still to be, is small enough for a texture.
bool isDrawable(FT_Glyph glyph)
{
    FT_BBox box = {};
    FT_Glyph_Get_CBox(glyph, FT_GLYPH_BBOX_PIXELS, &box);
    return box.xMax - box.xMin <= MAX_GLYPH_SIDE && box.yMax - box.yMin <= MAX_GLYPH_SIDE;
}

/// The glyph, rendered: it is an FT_BitmapGlyph.
GlyphHandle renderGlyph(FT_Face face, FT_UInt index)
{
    if (FT_Load_Glyph(face, index, FT_LOAD_DEFAULT) != 0) {
        throw std::runtime_error("FT_Load_Glyph failed");
    }
    FT_Glyph glyph = nullptr;
    if (FT_Get_Glyph(face->glyph, &glyph) != 0) {
        throw std::runtime_error("FT_Get_Glyph failed");
    }
    // A glyph that is too large fails like one that the library itself will not render.
    const bool failed =
        !isDrawable(glyph) || FT_Glyph_To_Bitmap(&glyph, FT_RENDER_MODE_NORMAL, nullptr, 1) != 0;
    GlyphHandle rendered(glyph);
    if (failed) {
        throw std::runtime_error("FT_Glyph_To_Bitmap failed");
    }
    return rendered;
}

/// The coverage of the pixels, 0 to 255, top row first, rows not padded, of a bitmap that has
/// fewer bits to a pixel, as those of a bitmap font, or its last row first.
std::vector<unsigned char> convertedCoverage(FT_Library library, const FT_Bitmap& bitmap)
{
    const std::size_t size = std::size_t{bitmap.width} * bitmap.rows;
    const GreyBitmap grey(library, bitmap);
    const int lightest = std::max(grey.bitmap.num_grays - 1, 1);
    std::vector<unsigned char> coverage(grey.bitmap.buffer, grey.bitmap.buffer + size);
    for (unsigned char& value : coverage) {
        value = static_cast<unsigned char>(value * 255 / lightest);
    }
    return coverage;
}

/// Loads the image of a glyph's texture, whose sides are powers of two, and leaves it bound.
void uploadGlyph(GLuint texture, const std::vector<unsigned char>& image, int width, int height)
{
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    // Rows are not padded: that of an image one texel wide has two bytes.
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

/// What texture and list of a character are made of.
struct Character {
    std::vector<unsigned char> image; ///< of the texture
    int columns = 0;                  ///< of the glyph's bitmap
    int rows = 0;
    int left = 0;     ///< from the pen to the first column
    int top = 0;      ///< from the baseline to the first row
    long advance = 0; ///< of the pen
};

Character readCharacter(FT_Face face, FT_UInt index)
{
    const GlyphHandle glyph = renderGlyph(face, index);
    const auto* rendered = reinterpret_cast<FT_BitmapGlyph>(glyph.get());
    const FT_Bitmap& bitmap = rendered->bitmap;
    return {freetype::expand_bitmap(face->glyph->library, bitmap),
            static_cast<int>(bitmap.width),
            static_cast<int>(bitmap.rows),
            rendered->left,
            rendered->top,
            face->glyph->advance.x >> 6};
}

void makeTextureAndList(const Character& character, GLuint texture, GLuint list)
{
    const int width = freetype::next_p2(character.columns);
    const int height = freetype::next_p2(character.rows);
    uploadGlyph(texture, character.image, width, height);

    glNewList(list, GL_COMPILE);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTranslatef(static_cast<float>(character.left), 0, 0);
    glPushMatrix();
    glTranslatef(0, static_cast<float>(character.top - character.rows), 0);
    const auto columns = static_cast<float>(character.columns);
    const auto rows = static_cast<float>(character.rows);
    drawQuad(columns, rows, columns / static_cast<float>(width), rows / static_cast<float>(height));
    glPopMatrix();
    glTranslatef(static_cast<float>(character.advance), 0, 0);
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

    const LibraryHandle library = openLibrary();
    const FaceHandle face = openFace(library.get(), fname);
    const FT_F26Dot6 size = static_cast<FT_F26Dot6>(height) * 64;
    FT_Set_Char_Size(face.get(), size, size, 96, 96);

    list_base = glGenLists(CHARACTERS);
    glGenTextures(CHARACTERS, textures);
    // A quarter of the characters, one after the other, share the glyph of those that a font lacks.
    Character character;
    FT_UInt last = 0;
    for (unsigned c = 0; c < CHARACTERS; ++c) {
        const FT_UInt index = FT_Get_Char_Index(face.get(), c);
        if (c == 0 || index != last) {
            character = readCharacter(face.get(), index);
            last = index;
        }
        makeTextureAndList(character, textures[c], list_base + c);
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
    // Deliberately after every mode, see FreeType.h: callers of the others count on it.
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

void make_dlist(FT_Face face, char ch, GLuint list_base, const GLuint* tex_base)
{
    const auto character = static_cast<unsigned char>(ch);
    if (character >= CHARACTERS) {
        return;
    }
    makeTextureAndList(readCharacter(face, FT_Get_Char_Index(face, character)), tex_base[character],
                       list_base + character);
}

std::vector<unsigned char> expand_bitmap(FT_Library library, const FT_Bitmap& bitmap)
{
    const bool isCoverage = bitmap.pixel_mode == FT_PIXEL_MODE_GRAY && bitmap.pitch >= 0;
    const bool isEmpty = bitmap.width == 0 || bitmap.rows == 0;
    const std::vector<unsigned char> converted =
        isCoverage || isEmpty ? std::vector<unsigned char>() : convertedCoverage(library, bitmap);
    const unsigned char* in = isCoverage ? bitmap.buffer : converted.data();
    const auto width = static_cast<std::size_t>(next_p2(static_cast<int>(bitmap.width)));
    const auto height = static_cast<std::size_t>(next_p2(static_cast<int>(bitmap.rows)));
    std::vector<unsigned char> image(2 * width * height);
    for (std::size_t j = 0; j < bitmap.rows; ++j) {
        unsigned char* texel = image.data() + 2 * width * j;
        for (std::size_t i = 0; i < bitmap.width; ++i) {
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
