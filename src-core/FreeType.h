#pragma once

#include <GL/glew.h>

#include <vector>

// What FreeType's FT_Face, FT_Library and FT_Bitmap stand for.
struct FT_FaceRec_;
struct FT_LibraryRec_;
struct FT_Bitmap_;

/// Text in a font file's glyphs: one GL texture and one display list for each 7-bit character.
///
/// The list of a character draws a textured quad in the plane z = 0 of the modelview frame, 1 unit
/// to a pixel, y upwards, the pen at the origin on the baseline, and then moves the frame to the
/// right by the character's advance.
namespace freetype {

/// A font at one size. Nothing is released by itself: clean does that while the GL context lives.
struct font_data {
    float h = 0;                ///< height as given to init
    GLuint* textures = nullptr; ///< owns; 128 texture names, one for each character
    GLuint list_base = 0;       ///< first of 128 display lists: list_base + c draws character c

    font_data() = default;
    font_data(const font_data&) = delete;
    font_data& operator=(const font_data&) = delete;

    /// Makes the textures and lists of the characters 0 to 127. Of a font that was initialised
    /// before, the names are forgotten and the GL objects stay with their context: a window calls
    /// this again after its context was made anew.
    ///
    /// Needs: current GL context, no display list open. Changes: the binding of GL_TEXTURE_2D.
    /// \param fname   a file in any format that FreeType reads
    /// \param height  size of the font in points at 96 dots per inch: 12 makes an em of 16 pixels
    /// \throws std::runtime_error "FT_Init_FreeType failed", "FT_New_Face failed (there is probably
    ///         a problem with your font file)", "FT_Load_Glyph failed", "FT_Get_Glyph failed", or
    ///         the name of another function of FreeType that failed. A glyph more than 2048 pixels
    ///         wide or high counts as one that FT_Glyph_To_Bitmap cannot render. The font can be
    ///         cleaned or initialised again then, but not printed with
    void init(const char* fname, unsigned int height);

    /// Deletes the lists and textures. Needs: the GL context of init, current. Without a font, and
    /// a second time, it does nothing.
    void clean();
};

/// Formats a text as printf does, cuts it after 255 characters, and draws it line by line, each
/// h / 0.63 units below the one before; "\n" starts a new line. The first line's pen starts at
/// (x, y).
///
/// Needs: current GL context, a font that was initialised. Changes: the blend function (to that of
/// GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA), and the projection matrix as told below. Restores:
/// everything else, the modelview matrix included.
///
/// \param mode  1: (x, y) are pixels from the lower left corner of the viewport, and the projection
///              is set for that.
///              0: the text hangs in the scene, shifted by (-10 * length of the whole text, -10) in
///              the frame of the modelview matrix, a rough centring.
///              Others: like 0, without the shift.
///              After every mode the projection matrix stack is popped once, deliberately, also
///              after those that pushed nothing: whoever uses a mode other than 1 has to push the
///              projection matrix before
/// \param x,y   start of the first line; the modelview matrix acts before this shift
/// \param fmt   null counts as an empty text. Characters above 127 call the lists behind the font's
[[gnu::format(printf, 5, 6)]] void print(int mode, const font_data& font, float x, float y,
                                         const char* fmt, ...);

/// \return the smallest power of two that is at least \p a, from 1; 2^30 for what is larger
int next_p2(int a);

/// Makes the texture and the display list of one character. Needs: current GL context, no display
/// list open. Changes: the binding of GL_TEXTURE_2D.
/// \param face       a face whose size is set; its glyph slot changes
/// \param ch         0 to 127; for others nothing happens
/// \param list_base  the list becomes list_base + ch
/// \param tex_base   128 texture names; uses tex_base[ch]
/// \throws std::runtime_error as font_data::init
void make_dlist(FT_FaceRec_* face, char ch, GLuint list_base, const GLuint* tex_base);

/// The image of a glyph's texture: the bitmap in the first corner of an image whose sides are
/// powers of two, two bytes to a texel (luminance, alpha), both the coverage; the rest is 0. Row
/// order stays: the first row is the top of the glyph. Needs no GL context.
/// \param library  FreeType's FT_Library
/// \param bitmap   FreeType's FT_Bitmap. Of 8-bit grey with the first row first, the rows are
///                 taken as if they were not padded, whatever the pitch: deliberate, FreeType
///                 renders without padding. Other kinds are converted.
/// \return 2 * next_p2(width) * next_p2(rows) bytes
/// \throws std::runtime_error "FT_Bitmap_Convert failed"
std::vector<unsigned char> expand_bitmap(FT_LibraryRec_* library, const FT_Bitmap_& bitmap);

/// Pushes the projection matrix and sets one of pixels: the viewport's x to its width and its y to
/// its height (which is the viewport when that starts at the origin). Needs: current GL context.
/// Restores: the matrix mode.
void pushScreenCoordinateMatrix();

/// Pops the projection matrix stack. Needs: current GL context. Restores: the matrix mode.
void pop_projection_matrix();

} // namespace freetype
