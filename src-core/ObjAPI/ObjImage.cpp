#include "ObjStore.h"
#include "OpenFile.h"

#include <algorithm>
#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <new>
#include <string_view>

#include <GL/glu.h>
#include <jpeglib.h>
#include <png.h>

namespace {

/// A picture in memory: 8 bits per component, rows bottom-up.
struct Picture {
    int width = 0;
    int height = 0;
    int components = 0;
    std::unique_ptr<unsigned char[]> pixels;

    /// Makes room for \p height rows of \p row_bytes.
    /// \return false when they would be too many or memory runs out
    bool allocate(std::size_t row_bytes)
    {
        // Below 1 GiB, GLU's own sizes, which are up to twice as large, fit its int.
        constexpr std::size_t MOST_BYTES = (std::size_t{1} << 30) - 1;
        stride_ = row_bytes;
        if (height < 1 || row_bytes < 1 ||
            row_bytes > MOST_BYTES / static_cast<std::size_t>(height)) {
            return false;
        }
        pixels.reset(
            new (std::nothrow) unsigned char[row_bytes * static_cast<std::size_t>(height)]);
        return pixels != nullptr;
    }

    /// \param y  counted from the top
    unsigned char* row(int y)
    {
        return pixels.get() + stride_ * static_cast<std::size_t>(height - 1 - y);
    }

private:
    std::size_t stride_ = 0;
};

// The decoders leave through longjmp. Between their setjmp and their end they own nothing that
// needs a destructor: the picture and the file belong to the caller.

[[noreturn]] void png_failed(png_structp png, png_const_charp)
{
    png_longjmp(png, 1);
}

void png_warned(png_structp, png_const_charp)
{
}

int png_components(png_byte color_type)
{
    switch (color_type) {
    case PNG_COLOR_TYPE_GRAY:
        return 1;
    case PNG_COLOR_TYPE_GRAY_ALPHA:
        return 2;
    case PNG_COLOR_TYPE_RGB:
        return 3;
    case PNG_COLOR_TYPE_RGB_ALPHA:
        return 4;
    default:
        return 0; // a palette
    }
}

bool read_png(std::FILE* file, Picture& picture)
{
    png_structp png =
        png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, png_failed, png_warned);
    if (png == nullptr) {
        return false;
    }
    png_infop info = png_create_info_struct(png);
    if (info == nullptr) {
        png_destroy_read_struct(&png, nullptr, nullptr);
        return false;
    }
    if (setjmp(png_jmpbuf(png)) != 0) {
        png_destroy_read_struct(&png, &info, nullptr);
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
    picture.width = static_cast<int>(png_get_image_width(png, info));
    picture.height = static_cast<int>(png_get_image_height(png, info));
    picture.components = png_components(png_get_color_type(png, info));
    const bool fits = picture.allocate(png_get_rowbytes(png, info));
    if (fits) {
        for (int pass = 0; pass < passes; ++pass) {
            for (int y = 0; y < picture.height; ++y) {
                png_read_row(png, picture.row(y), nullptr);
            }
        }
        png_read_end(png, nullptr);
    }
    png_destroy_read_struct(&png, &info, nullptr);
    return fits;
}

struct JpegErrors {
    jpeg_error_mgr base; ///< first, so that the library's pointer to it is one to this
    std::jmp_buf failed;
};

[[noreturn]] void give_up(j_common_ptr jpeg)
{
    std::longjmp(reinterpret_cast<JpegErrors*>(jpeg->err)->failed, 1);
}

/// Says what the library's own handler says, but does not end the process as that does.
[[noreturn]] void jpeg_failed(j_common_ptr jpeg)
{
    jpeg->err->output_message(jpeg);
    give_up(jpeg);
}

/// A progressive picture may come in any number of scans, each of which takes the time of the whole
/// picture; encoders write about 10, of four components (CMYK) 18.
void jpeg_progress(j_common_ptr jpeg)
{
    constexpr std::int64_t MOST_SCANS = 100;
    constexpr std::int64_t LEAST_SCANS = 18;
    constexpr auto MOST_SCANNED = std::int64_t{1} << 32; // pixels passed over
    const auto* picture = reinterpret_cast<j_decompress_ptr>(jpeg);
    const auto pixels = std::int64_t{picture->image_width} * picture->image_height;
    if (picture->input_scan_number > std::clamp(MOST_SCANNED / pixels, LEAST_SCANS, MOST_SCANS)) {
        give_up(jpeg);
    }
}

bool read_jpeg(std::FILE* file, Picture& picture)
{
    JpegErrors errors;
    jpeg_progress_mgr progress = {};
    jpeg_decompress_struct jpeg = {};
    jpeg.err = jpeg_std_error(&errors.base);
    errors.base.error_exit = jpeg_failed;
    if (setjmp(errors.failed) != 0) {
        jpeg_destroy_decompress(&jpeg);
        return false;
    }
    jpeg_create_decompress(&jpeg);
    progress.progress_monitor = jpeg_progress;
    jpeg.progress = &progress;
    jpeg_stdio_src(&jpeg, file);
    jpeg_read_header(&jpeg, TRUE);
    jpeg_calc_output_dimensions(&jpeg);
    picture.width = static_cast<int>(jpeg.output_width);
    picture.height = static_cast<int>(jpeg.output_height);
    picture.components = jpeg.output_components;
    // Before the decoder starts, which may take as much again.
    const bool fits = picture.allocate(std::size_t{jpeg.output_width} *
                                       static_cast<unsigned>(picture.components));
    if (fits) {
        jpeg_start_decompress(&jpeg);
        while (jpeg.output_scanline < jpeg.output_height) {
            JSAMPROW row = picture.row(static_cast<int>(jpeg.output_scanline));
            jpeg_read_scanlines(&jpeg, &row, 1);
        }
        jpeg_finish_decompress(&jpeg);
    }
    jpeg_destroy_decompress(&jpeg);
    return fits;
}

/// 0 leaves the texture without an image.
GLenum format_of(int components)
{
    switch (components) {
    case 1:
        return GL_LUMINANCE;
    case 2:
        return GL_LUMINANCE_ALPHA;
    case 3:
        return GL_RGB;
    case 4:
        return GL_RGBA;
    default:
        return 0;
    }
}

GLuint make_texture(const Picture& picture)
{
    const GLenum format = format_of(picture.components);
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);

    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1); // rows are not padded
    gluBuild2DMipmaps(GL_TEXTURE_2D, static_cast<GLint>(format), picture.width, picture.height,
                      format, GL_UNSIGNED_BYTE, picture.pixels.get());
    glPopClientAttrib();

    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    return texture;
}

} // namespace

namespace obj {

GLuint read_img(const char* path)
{
    const std::string_view name = path == nullptr ? "" : path;
    const bool png = name.ends_with(".png") || name.ends_with(".PNG");
    const bool jpeg = name.ends_with(".jpg") || name.ends_with(".JPG");
    if ((!png && !jpeg) || glGetString(GL_VERSION) == nullptr) {
        return 0;
    }
    const Files::Handle file = Files::openRegular(path);
    Picture picture;
    if (file == nullptr ||
        !(png ? read_png(file.get(), picture) : read_jpeg(file.get(), picture))) {
        return 0;
    }
    obj_init_gl();
    return make_texture(picture);
}

} // namespace obj
