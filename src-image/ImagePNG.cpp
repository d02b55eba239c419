#include "ImagePNG.h"

#include "ImageFile.h"
#include "OpenFile.h"

#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <memory>
#include <png.h>

namespace {

/// Uploads of PNG textures read this many bytes per pixel.
constexpr std::size_t UPLOADED_COMPONENTS = 4;

/// The library's two structures. Either may be null when memory runs out.
struct Decoder {
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);

    Decoder() = default;
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;
    ~Decoder() { png_destroy_read_struct(&png, &info, nullptr); }
};

/// Reads the whole picture, bottom row first, with the samples as bytes.
/// \return the pixels; null after a message on standard error
///
/// Library errors land here. Everything with a destructor lives in the caller, so a jump skips
/// none; the pixels are handed over through \p pixels, so that they are not lost.
bool decode(const Decoder& decoder, std::FILE* file, std::unique_ptr<unsigned char[]>& pixels)
{
    png_structp png = decoder.png;
    png_infop info = decoder.info;
    if (setjmp(png_jmpbuf(png)) != 0) {
        return false;
    }
    png_init_io(png, file);
    // Keep no texts: a thousand of them, of 8 MB each, may come from a file of 8 MB.
    png_set_chunk_cache_max(png, 1);
    png_read_info(png, info);
    png_set_strip_16(png);
    png_set_packing(png);
    const int passes = png_set_interlace_handling(png);
    png_read_update_info(png, info);

    const std::size_t height = png_get_image_height(png, info);
    pixels.reset(ImageFile::allocate(png_get_image_width(png, info), height,
                                     png_get_channels(png, info), UPLOADED_COMPONENTS));
    if (pixels == nullptr) {
        std::fprintf(stderr, "Can't get pixels from PNG\n");
        return false;
    }
    const std::size_t rowBytes = png_get_rowbytes(png, info);
    for (int pass = 0; pass < passes; ++pass) {
        for (std::size_t row = height; row > 0; --row) {
            png_read_row(png, pixels.get() + (row - 1) * rowBytes, nullptr);
        }
    }
    png_read_end(png, info);
    return true;
}

/// \return bytes per pixel; 0 for a colour type that textures do not take
int componentsOf(int colorType)
{
    switch (colorType) {
    case PNG_COLOR_TYPE_GRAY:
        return 1;
    case PNG_COLOR_TYPE_RGB:
        return 3;
    case PNG_COLOR_TYPE_RGB_ALPHA:
        return 4;
    default:
        return 0;
    }
}

} // namespace

ImagePNG::~ImagePNG()
{
    delete[] buffer;
}

int ImagePNG::read(const char* filename)
{
    if (filename == nullptr ||
        (std::strstr(filename, ".PNG") == nullptr && std::strstr(filename, ".png") == nullptr)) {
        return -1;
    }
    const Decoder decoder;
    if (decoder.info == nullptr) {
        return -1;
    }
    const Files::Handle file = Files::openRegular(filename);
    if (file == nullptr) {
        std::fprintf(stderr, "Can't open file %s\n", filename);
        return -1;
    }
    std::unique_ptr<unsigned char[]> pixels;
    if (!decode(decoder, file.get(), pixels)) {
        return -1;
    }

    // From here on the sizes are the new file's, and until its pixels are known to fit, none.
    freeBuffer();
    c = 0;
    w = static_cast<int>(png_get_image_width(decoder.png, decoder.info));
    h = static_cast<int>(png_get_image_height(decoder.png, decoder.info));
    const int components = componentsOf(png_get_color_type(decoder.png, decoder.info));
    if (components == 0) {
        std::fprintf(stderr, "Unsupported color type!\n");
        return -1;
    }
    if (png_get_bit_depth(decoder.png, decoder.info) != 8) {
        std::fprintf(stderr, "Unsupported bit depth!\n");
        return -1;
    }
    c = components;
    buffer = pixels.release();
    delete[] sourceFile;
    sourceFile = ImageFile::copyName(filename);
    return sourceFile != nullptr ? 1 : -1;
}

int ImagePNG::write(const char* /*filename*/, int /*quality*/)
{
    return 0;
}

void ImagePNG::freeBuffer()
{
    delete[] buffer;
    buffer = nullptr;
}
