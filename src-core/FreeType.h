#pragma once

#include "GLTypes.h"

#include <vector>

struct FT_FaceRec_; // the type behind FreeType's FT_Face
struct Glyph;       // FontFile.h

/// Text drawn with the glyphs of a font file: one GL texture and one display list for each
/// 7-bit character.
///
/// The display list of a character draws a textured quad in the plane z = 0 of the modelview frame,
/// 1 unit to a pixel, y upwards, the pen at the origin on the baseline. Then it translates the
/// modelview matrix to the right by the character's advance.
namespace freetype {

/// A font at one size. Its GL objects live until clean is called: there is no destructor, because a
/// GL context must be current then.
///
/// \par Example
/// \snippet obj-viewer.cpp text
struct font_data {
    float h = 0;                ///< height as given to init
    GLuint* textures = nullptr; ///< owns; 128 texture names, one for each character
    GLuint list_base = 0;       ///< first of 128 display lists: list_base + c draws character c

    font_data() = default;
    font_data(const font_data&) = delete;
    font_data& operator=(const font_data&) = delete;

    /// Makes the textures and display lists of the characters 0 to 127. A second call makes new
    /// ones and forgets the names of the earlier ones without deleting them: a window calls this
    /// again when it has a new GL context, in which the earlier names mean nothing.
    ///
    /// Needs: current GL context, no display list open. Changes: the binding of GL_TEXTURE_2D.
    /// \param fname   a regular file in any format that FreeType reads; may be null, which fails
    /// \param height  size of the font in points at 96 dots per inch: 12 makes an em of 16 pixels
    /// \throws std::runtime_error "FT_Init_FreeType failed", "FT_New_Face failed (there is probably
    ///         a problem with your font file)", "FT_Load_Glyph failed", "FT_Get_Glyph failed",
    ///         "FT_Glyph_To_Bitmap failed" or "FT_Bitmap_Convert failed". A glyph more than 4096
    ///         pixels wide or high fails as FT_Glyph_To_Bitmap, and so do glyphs whose textures
    ///         would have more than 2^29 texels together (2 GiB of 4 bytes each). After a failure
    ///         the font can be cleaned or initialized again, but must not be given to print
    void init(const char* fname, unsigned int height);

    /// Deletes the display lists and textures. Needs: the GL context of init, current. Before init,
    /// and a second time, it does nothing.
    void clean();
};

/// Formats a text as printf does, cuts it after 255 characters, and draws it line by line, each
/// h / 0.63 units below the one before; "\n" starts a new line. The first line's pen starts at
/// (x, y).
///
/// Needs: current GL context, a font that was initialized. Changes: the blend function (to
/// GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA) and the projection matrix stack (see below). Restores:
/// everything else, the modelview matrix included.
///
/// Fixed behavior: every mode of freetype::print pops the projection matrix stack once at the end,
/// also the modes that pushed nothing. The caller of a mode other than 1 pushes the projection
/// matrix before. Pinned by FreeTypePrintTest.EveryModePopsTheProjectionMatrixOnce; do not correct.
///
/// \param mode  1: (x, y) are pixels from the lower left corner of the viewport, and the projection
///              is set for that.
///              0: (x, y) are units of the scene, shifted by (-10 * length of the whole text, -10)
///              in the frame of the modelview matrix, which centers the text roughly.
///              Others: like 0, without the shift
/// \param x,y   start of the first line; the modelview matrix acts before this shift
/// \param fmt   null counts as an empty text. A character above 127 calls the display list with the
///              number list_base + character, which is not one of the font's
[[gnu::format(printf, 5, 6)]] void print(int mode, const font_data& font, float x, float y,
                                         const char* fmt, ...);

/// \return the smallest power of two that is at least \p a, from 1; 2^30 for what is larger
int next_p2(int a);

/// Makes the texture and the display list of one character. Needs: current GL context, no display
/// list open. Changes: the binding of GL_TEXTURE_2D.
/// \param face       a face whose size is set; its glyph slot changes
/// \param ch         0 to 127; for others nothing happens
/// \param list_base  the display list gets the number list_base + ch
/// \param tex_base   128 texture names; uses tex_base[ch]
/// \throws std::runtime_error as font_data::init
void make_dlist(FT_FaceRec_* face, char ch, GLuint list_base, const GLuint* tex_base);

/// The image of a glyph's texture: the glyph in the first corner of an image whose sides are powers
/// of two. Two bytes to a texel, luminance and alpha, both the coverage; the rest is 0. The first
/// row is the top of the glyph. Needs no GL context.
/// \return 2 * next_p2(columns) * next_p2(rows) bytes
std::vector<unsigned char> expand_bitmap(const Glyph& glyph);

/// Pushes the projection matrix stack and loads an orthographic projection in pixels.
///
/// Fixed behavior: freetype::pushScreenCoordinateMatrix spans the viewport's x to its width and the
/// viewport's y to its height. That is the viewport itself only when that starts at the origin.
/// Pinned by FreeTypePrintTest.TheScreenMatrixSpansTheViewport; do not correct.
///
/// Needs: current GL context. Restores: the matrix mode.
void pushScreenCoordinateMatrix();

/// Pops the projection matrix stack. Needs: current GL context. Restores: the matrix mode.
void pop_projection_matrix();

} // namespace freetype
