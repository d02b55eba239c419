#include "FontFile.h"

#include "OpenFile.h"

#include <ft2build.h>
// The macros that name FreeType's other headers come from ft2build.h.
#include FT_FREETYPE_H
#include FT_BITMAP_H
#include FT_GLYPH_H

#include <algorithm>
#include <bit>
#include <cstdio>
#include <stdexcept>
#include <sys/stat.h>

namespace {

struct ReleaseGlyph {
    void operator()(FT_Glyph glyph) const { FT_Done_Glyph(glyph); }
};
using GlyphHandle = std::unique_ptr<FT_GlyphRec_, ReleaseGlyph>;

/// An 8-bit copy of a bitmap.
struct GrayBitmap {
    FT_Library library;
    FT_Bitmap bitmap = {};

    GrayBitmap(FT_Library lib, const FT_Bitmap& source) : library(lib)
    {
        FT_Bitmap_Init(&bitmap);
        if (FT_Bitmap_Convert(library, &source, &bitmap, 1) != 0) {
            throw std::runtime_error("FT_Bitmap_Convert failed");
        }
    }
    GrayBitmap(const GrayBitmap&) = delete;
    GrayBitmap& operator=(const GrayBitmap&) = delete;
    ~GrayBitmap() { FT_Bitmap_Done(library, &bitmap); }
};

/// FreeType's read callback of a stream. A count of 0 asks whether the position exists.
/// \return the bytes read; for a count of 0, 0 when the position exists
unsigned long readStream(FT_Stream stream, unsigned long offset, unsigned char* buffer,
                         unsigned long count)
{
    auto* file = static_cast<std::FILE*>(stream->descriptor.pointer);
    if (count == 0) {
        return offset > stream->size ? 1 : 0;
    }
    const auto at = static_cast<off_t>(offset);
    if (offset > stream->size || (ftello(file) != at && fseeko(file, at, SEEK_SET) != 0)) {
        return 0;
    }
    return std::fread(buffer, 1, count, file);
}

/// Describes an open file as a stream that FreeType can read.
/// \return false for null, and when the size of the file cannot be told
bool describeStream(std::FILE* file, FT_StreamRec& stream)
{
    struct stat status = {};
    if (file == nullptr || fstat(fileno(file), &status) != 0) {
        return false;
    }
    stream.size = static_cast<unsigned long>(status.st_size);
    stream.descriptor.pointer = file;
    stream.read = readStream;
    return true;
}

/// Opens the first face of a font.
FT_Error openFace(FT_Library library, FT_StreamRec& stream, FT_Face& face)
{
    FT_Open_Args arguments = {};
    arguments.flags = FT_OPEN_STREAM;
    arguments.stream = &stream;
    return FT_Open_Face(library, &arguments, 0, &face);
}

/// Whether the bitmap of a glyph, which may not be rendered yet, is small enough.
bool isDrawable(FT_Glyph glyph)
{
    FT_BBox box = {};
    FT_Glyph_Get_CBox(glyph, FT_GLYPH_BBOX_PIXELS, &box);
    return box.xMax - box.xMin <= FontFile::MAX_SIDE && box.yMax - box.yMin <= FontFile::MAX_SIDE;
}

/// Loads and renders a glyph. The result is an FT_BitmapGlyph.
GlyphHandle renderGlyph(FT_Face face, FT_UInt index)
{
    if (FT_Load_Glyph(face, index, FT_LOAD_DEFAULT) != 0) {
        throw std::runtime_error("FT_Load_Glyph failed");
    }
    FT_Glyph glyph = nullptr;
    if (FT_Get_Glyph(face->glyph, &glyph) != 0) {
        throw std::runtime_error("FT_Get_Glyph failed");
    }
    // A glyph that is too large fails like one that FreeType cannot render. FT_Glyph_To_Bitmap
    // replaces the glyph when it succeeds.
    const bool failed =
        !isDrawable(glyph) || FT_Glyph_To_Bitmap(&glyph, FT_RENDER_MODE_NORMAL, nullptr, 1) != 0;
    GlyphHandle rendered(glyph);
    if (failed) {
        throw std::runtime_error("FT_Glyph_To_Bitmap failed");
    }
    return rendered;
}

Glyph readGlyph(FT_Face face, FT_UInt index)
{
    const GlyphHandle handle = renderGlyph(face, index);
    const auto* rendered = reinterpret_cast<FT_BitmapGlyph>(handle.get());
    const FT_Bitmap& bitmap = rendered->bitmap;
    Glyph glyph;
    glyph.coverage = FontFile::coverageOf(face->glyph->library, bitmap);
    const bool lacksPixels =
        glyph.coverage.size() < static_cast<std::size_t>(bitmap.width) * bitmap.rows;
    if (!lacksPixels) {
        glyph.columns = static_cast<int>(bitmap.width);
        glyph.rows = static_cast<int>(bitmap.rows);
    }
    glyph.left = rendered->left;
    glyph.top = rendered->top;
    glyph.advance = face->glyph->advance.x >> 6;
    return glyph;
}

} // namespace

/// The members are destroyed in the order that FreeType needs: face, library, stream, file.
struct FontFile::Opened {
    struct Release {
        void operator()(FT_Library library) const { FT_Done_FreeType(library); }
        void operator()(FT_Face face) const { FT_Done_Face(face); }
    };

    Files::Handle file;
    FT_StreamRec stream = {};
    std::unique_ptr<FT_LibraryRec_, Release> library;
    std::unique_ptr<FT_FaceRec_, Release> face;
};

void FontFile::Close::operator()(Opened* opened) const
{
    delete opened;
}

FontFile::FontFile(const char* name, unsigned height) : opened_(new Opened)
{
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0) {
        throw std::runtime_error("FT_Init_FreeType failed");
    }
    opened_->library.reset(library);

    opened_->file = Files::openRegular(name);
    FT_Face face = nullptr;
    if (!describeStream(opened_->file.get(), opened_->stream) ||
        openFace(library, opened_->stream, face) != 0) {
        throw std::runtime_error(
            "FT_New_Face failed (there is probably a problem with your font file)");
    }
    opened_->face.reset(face);
    const FT_F26Dot6 size = static_cast<FT_F26Dot6>(height) * 64;
    FT_Set_Char_Size(face, size, size, 96, 96);
}

const Glyph& FontFile::glyph(unsigned character)
{
    // The characters that a font lacks share one glyph and often follow each other: it is
    // rendered once.
    const FT_UInt index = FT_Get_Char_Index(opened_->face.get(), character);
    if (!rendered_ || index != index_) {
        rendered_ = false;
        glyph_ = readGlyph(opened_->face.get(), index);
        index_ = index;
        rendered_ = true;
    }
    texels_ += std::bit_ceil(static_cast<std::size_t>(glyph_.columns)) *
               std::bit_ceil(static_cast<std::size_t>(glyph_.rows));
    if (texels_ > MAX_TEXELS) {
        throw std::runtime_error("FT_Glyph_To_Bitmap failed");
    }
    return glyph_;
}

bool FontFile::has(unsigned character) const
{
    return FT_Get_Char_Index(opened_->face.get(), character) != 0;
}

std::string FontFile::family() const
{
    return opened_->face->family_name != nullptr ? opened_->face->family_name : "";
}

Glyph FontFile::render(FT_FaceRec_* face, unsigned character)
{
    return readGlyph(face, FT_Get_Char_Index(face, character));
}

std::vector<unsigned char> FontFile::coverageOf(FT_LibraryRec_* library, const FT_Bitmap_& bitmap)
{
    // A font can give a glyph a size and no bitmap, as a BDF glyph without the line BITMAP does.
    if (bitmap.buffer == nullptr) {
        return {};
    }
    const std::size_t size = std::size_t{bitmap.width} * bitmap.rows;
    if (size == 0 || (bitmap.pixel_mode == FT_PIXEL_MODE_GRAY && bitmap.pitch >= 0)) {
        return {bitmap.buffer, bitmap.buffer + size};
    }
    const GrayBitmap gray(library, bitmap);
    const int lightest = std::max(gray.bitmap.num_grays - 1, 1);
    std::vector<unsigned char> coverage(gray.bitmap.buffer, gray.bitmap.buffer + size);
    for (unsigned char& value : coverage) {
        value = static_cast<unsigned char>(value * 255 / lightest);
    }
    return coverage;
}
