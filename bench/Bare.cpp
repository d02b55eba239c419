#include "Bare.h"

#include "Data.h"

#include <charconv>
#include <cstddef>
#include <vorbis/vorbisfile.h>

#include <jpeglib.h>
#include <png.h>

namespace bench {

Pixels decodeJpeg(const std::string& path)
{
    const File file(std::fopen(path.c_str(), "rb"));
    jpeg_decompress_struct jpeg;
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_stdio_src(&jpeg, file.get());
    jpeg_read_header(&jpeg, TRUE);
    jpeg_start_decompress(&jpeg);
    const std::size_t stride =
        std::size_t{jpeg.output_width} * static_cast<std::size_t>(jpeg.output_components);
    Pixels pixels(new unsigned char[stride * jpeg.output_height]);
    while (jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW row = pixels.get() + stride * (jpeg.output_height - 1 - jpeg.output_scanline);
        jpeg_read_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
    return pixels;
}

Pixels decodePng(const std::string& path)
{
    const File file(std::fopen(path.c_str(), "rb"));
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file.get());
    png_read_info(png, info);
    const std::size_t stride = png_get_rowbytes(png, info);
    const std::size_t height = png_get_image_height(png, info);
    Pixels pixels(new unsigned char[stride * height]);
    for (std::size_t y = height; y > 0; --y) {
        png_read_row(png, pixels.get() + stride * (y - 1), nullptr);
    }
    png_read_end(png, info);
    png_destroy_read_struct(&png, &info, nullptr);
    return pixels;
}

std::vector<char> decodeOgg(const std::string& path)
{
    OggVorbis_File file;
    std::vector<char> out;
    if (ov_open(std::fopen(path.c_str(), "rb"), &file, nullptr, 0) != 0) {
        return out;
    }
    const auto frames = static_cast<std::size_t>(ov_pcm_total(&file, -1));
    out.reserve(frames * 2 * static_cast<std::size_t>(ov_info(&file, -1)->channels));
    char chunk[32768];
    int link = 0;
    long count = 0;
    while ((count = ov_read(&file, chunk, sizeof chunk, 0, 2, 1, &link)) > 0) {
        out.insert(out.end(), chunk, chunk + count);
    }
    ov_clear(&file);
    return out;
}

std::vector<float> decodeNumbers(const std::string& path)
{
    const std::string text = readFile(path);
    const char* const end = text.data() + text.size();
    std::vector<float> numbers;
    for (const char* p = text.data(); p < end; ++p) {
        float number = 0;
        const auto [after, error] = std::from_chars(p, end, number);
        if (error == std::errc()) {
            numbers.push_back(number);
            p = after;
        }
    }
    return numbers;
}

} // namespace bench
