#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

// The types behind FT_Face, FT_Library and FT_Bitmap of FreeType.
struct FT_FaceRec_;
struct FT_LibraryRec_;
struct FT_Bitmap_;

/// The bitmap of one character, as FreeType renders it.
struct Glyph {
    /// columns * rows bytes: the coverage of each pixel, 0 to 255. The first row is the top of the
    /// glyph. Empty for a glyph without pixels, a space for example.
    std::vector<unsigned char> coverage;
    int columns = 0;  ///< of the bitmap, 0 to FontFile::MAX_SIDE; one side alone may be 0
    int rows = 0;     ///< of the bitmap, likewise; both are 0 when FreeType gives no pixels
    int left = 0;     ///< pixels from the pen to the first column
    int top = 0;      ///< pixels from the baseline up to the top of the first row
    long advance = 0; ///< pixels that the pen moves to the right; negative for the left
};

/// A font file at one size, read without OpenGL. It is the one reader of fonts: freetype::font_data
/// makes textures of its glyphs, and kelpix-media --check asks it which fonts can be read.
///
/// \code
/// FontFile font("fonts/ChalkboardBold.ttf", 12);
/// const Glyph& a = font.glyph('A');
/// \endcode
class FontFile {
public:
    /// The longest side of a glyph's bitmap, in pixels. A font can claim glyphs of any size,
    /// whatever the height.
    static constexpr long MAX_SIDE = 4096;

    /// The most texels in the textures of all glyphs that one FontFile hands out, when each gets a
    /// texture whose sides are powers of two. They take 2 GiB of 4 bytes each.
    static constexpr std::size_t MAX_TEXELS = std::size_t{1} << 29;

    /// Opens a font.
    /// \param name    a regular file in any format that FreeType reads; may be null
    /// \param height  size of the font in points at 96 dots per inch: 12 makes an em of 16 pixels.
    ///                FreeType takes 0 for 1. A height that it refuses leaves the size of the font
    ///                as it is opened: outlines have no pixels then, and bitmap fonts the size of
    ///                their bitmaps
    /// \throws std::runtime_error "FT_Init_FreeType failed" or "FT_New_Face failed (there is
    ///         probably a problem with your font file)", the latter also when there is no
    ///         regular file
    FontFile(const char* name, unsigned height);

    /// Renders a character's glyph.
    /// \param character  code in the font's character map; a character that the font lacks has the
    ///                   glyph that the font keeps for those
    /// \return a reference into this object, valid until the next call
    /// \throws std::runtime_error as render; also "FT_Glyph_To_Bitmap failed" when the textures of
    ///         the glyphs so far need more than MAX_TEXELS
    const Glyph& glyph(unsigned character);

    /// \return whether the font's character map has the character
    bool has(unsigned character) const;

    /// \return the name of the font's family; empty when it has none. The bytes come from the file
    ///         and may be anything
    std::string family() const;

    /// Renders a character of a face that the caller has opened and sized. The face's glyph
    /// slot changes.
    ///
    /// \throws std::runtime_error "FT_Load_Glyph failed", "FT_Get_Glyph failed",
    ///         "FT_Glyph_To_Bitmap failed" or "FT_Bitmap_Convert failed". A glyph more than
    ///         MAX_SIDE pixels wide or high fails as FT_Glyph_To_Bitmap
    static Glyph render(FT_FaceRec_* face, unsigned character);

    /// The coverage of a bitmap's pixels, as in Glyph. Bitmaps of other kinds than 8-bit gray, and
    /// those whose last row comes first, are converted.
    ///
    /// Fixed behavior: the rows of an 8-bit gray bitmap with the first row first are read as if
    /// they were not padded, whatever the pitch. Pinned by
    /// CoverageTest.GrayRowsAreTakenWithoutTheirPadding; do not correct.
    ///
    /// \return width * rows bytes; empty for a bitmap without pixels or without a buffer
    /// \throws std::runtime_error "FT_Bitmap_Convert failed"
    static std::vector<unsigned char> coverageOf(FT_LibraryRec_* library, const FT_Bitmap_& bitmap);

private:
    struct Opened;
    struct Close {
        void operator()(Opened* opened) const;
    };

    std::unique_ptr<Opened, Close> opened_; ///< owns: the file and FreeType's objects for it
    Glyph glyph_;                           ///< the latest one
    unsigned index_ = 0;                    ///< of glyph_ in the font
    bool rendered_ = false;                 ///< glyph_ holds a glyph
    std::size_t texels_ = 0;                ///< of the glyphs handed out
};
