/// The input is the height of a font, two bytes with the low one first, and the font file, of any
/// kind that FreeType reads.

#include "FreeType.h"
#include "Harness.h"
#include "Textures.h"

#include <ft2build.h>
// The macros that name FreeType's other headers come from ft2build.h.
#include FT_BITMAP_H
#include FT_GLYPH_H

#include <cstdint>
#include <stdexcept>

extern "C" {
FT_Error __real_FT_Init_FreeType(FT_Library* library);
FT_Error __wrap_FT_Init_FreeType(FT_Library* library)
{
    return fuzz::memory::runsOut() ? FT_Err_Out_Of_Memory : __real_FT_Init_FreeType(library);
}
FT_Error __real_FT_Get_Glyph(FT_GlyphSlot slot, FT_Glyph* glyph);
FT_Error __wrap_FT_Get_Glyph(FT_GlyphSlot slot, FT_Glyph* glyph)
{
    return fuzz::memory::runsOut() ? FT_Err_Out_Of_Memory : __real_FT_Get_Glyph(slot, glyph);
}
// Glyphs count as eight times as large: the largest that are rendered have 512 pixels. The same
// code runs, and 128 of them take less than a second.
void __real_FT_Glyph_Get_CBox(FT_Glyph glyph, FT_UInt mode, FT_BBox* box);
void __wrap_FT_Glyph_Get_CBox(FT_Glyph glyph, FT_UInt mode, FT_BBox* box)
{
    __real_FT_Glyph_Get_CBox(glyph, mode, box);
    box->xMax += 7 * (box->xMax - box->xMin);
    box->yMax += 7 * (box->yMax - box->yMin);
}
FT_Error __real_FT_Bitmap_Convert(FT_Library library, const FT_Bitmap* from, FT_Bitmap* to,
                                  FT_Int alignment);
FT_Error __wrap_FT_Bitmap_Convert(FT_Library library, const FT_Bitmap* from, FT_Bitmap* to,
                                  FT_Int alignment)
{
    return fuzz::memory::runsOut() ? FT_Err_Out_Of_Memory
                                   : __real_FT_Bitmap_Convert(library, from, to, alignment);
}
}

namespace {

bool isDocumented(std::string_view failure)
{
    return failure == "FT_Init_FreeType failed" || failure == "FT_Load_Glyph failed" ||
           failure == "FT_Get_Glyph failed" || failure == "FT_Glyph_To_Bitmap failed" ||
           failure == "FT_Bitmap_Convert failed" ||
           failure == "FT_New_Face failed (there is probably a problem with your font file)";
}

/// Cleans itself, also after an exception.
struct Font : freetype::font_data {
    ~Font() { clean(); }
};

} // namespace

void fuzz::test(std::string_view input)
{
    const TextureCheck textures;
    constexpr std::size_t HEIGHT_BYTES = 2;
    constexpr unsigned MAX_HEIGHT = 300;
    const unsigned number = fuzz::Numbers(input.substr(0, HEIGHT_BYTES)).take<std::uint16_t>();
    const unsigned height = number % (MAX_HEIGHT + 1);
    const std::string path = place("font", input.substr(std::min(input.size(), HEIGHT_BYTES)));
    Font font;
    freetype::make_dlist(nullptr, '\x80', 0, nullptr); // a character without a display list
    try {
        call([&] { font.init(path.c_str(), height); });
        freetype::print(1, font, 1, 2, "%s\n%d", "text", 12);
        freetype::print(0, font, 1, 2, nullptr);
    } catch (const std::runtime_error& failure) {
        expect(isDocumented(failure.what()), "the failure is a documented one");
    }
}
