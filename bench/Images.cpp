// Decoding pictures of 2048 by 2048 pixels into a buffer with the bottom row first.

#include "Data.h"
#include "Job.h"

#include "Encode.h"
#include "ImageJPEG.h"
#include "ImagePNG.h"
#include "Random.h"

#include <cmath>
#include <cstdio>
#include <memory>
#include <spng.h>
#include <stb/stb_image.h>
#include <vector>

#include <jpeglib.h>
#include <png.h>

namespace {

constexpr std::size_t SIDE = 2048;

struct FreeFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FreeFile>;
using Pixels = std::unique_ptr<unsigned char[]>;

/// A smooth picture with waves and a little noise, as photographs have.
media::Bitmap newPicture(int channels)
{
    media::Bitmap picture;
    picture.width = picture.height = static_cast<int>(SIDE);
    picture.channels = channels;
    media::Random random(1);
    for (std::size_t y = 0; y < SIDE; ++y) {
        for (std::size_t x = 0; x < SIDE; ++x) {
            const double wave =
                std::sin(0.01 * static_cast<double>(x) + std::sin(0.02 * static_cast<double>(y)));
            for (int k = 0; k < channels; ++k) {
                const double level = 128 + 40 * wave + 20 * k + random.between(-8, 8);
                picture.bytes.push_back(static_cast<unsigned char>(level));
            }
        }
    }
    return picture;
}

std::unique_ptr<unsigned char[]> newPixels(std::size_t channels)
{
    return Pixels(new unsigned char[SIDE * SIDE * channels]);
}

std::uint64_t hashOf(const unsigned char* pixels, std::size_t channels)
{
    return bench::hashOf(pixels, SIDE * SIDE * channels);
}

/// The library's rows, straight into place.
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
    Pixels pixels = newPixels(3);
    while (jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW row = pixels.get() + SIDE * 3 * (SIDE - 1 - jpeg.output_scanline);
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
    Pixels pixels = newPixels(4);
    for (std::size_t y = SIDE; y > 0; --y) {
        png_read_row(png, pixels.get() + SIDE * 4 * (y - 1), nullptr);
    }
    png_read_end(png, info);
    png_destroy_read_struct(&png, &info, nullptr);
    return pixels;
}

Pixels decodeSpng(const std::string& path)
{
    const File file(std::fopen(path.c_str(), "rb"));
    spng_ctx* context = spng_ctx_new(0);
    spng_set_png_file(context, file.get());
    Pixels pixels = newPixels(4);
    spng_decode_image(context, nullptr, 0, SPNG_FMT_PNG, SPNG_DECODE_PROGRESSIVE);
    for (std::size_t y = SIDE; y > 0; --y) {
        spng_decode_row(context, pixels.get() + SIDE * 4 * (y - 1), SIDE * 4);
    }
    spng_ctx_free(context);
    return pixels;
}

stbi_uc* decodeStb(const std::string& path)
{
    stbi_set_flip_vertically_on_load(1);
    int width = 0;
    int height = 0;
    int channels = 0;
    return stbi_load(path.c_str(), &width, &height, &channels, 0);
}

/// The project's reader, one object for all reads.
template<typename Image>
bench::Way own(const std::string& path, std::size_t channels)
{
    const auto image = std::make_shared<Image>();
    const auto read = [image, path] { image->read(path.c_str()); };
    return {.name = "kelpix", .run = read, .result = [=] {
                read();
                return hashOf(image->buffer, channels);
            }};
}

bench::Way with(const char* name, const std::string& path, std::size_t channels,
                Pixels decode(const std::string&))
{
    return {.name = name,
            .run = [=] { decode(path); },
            .result = [=] { return hashOf(decode(path).get(), channels); }};
}

/// Its JPEG decoder rounds differently: no result to compare.
bench::Way withStb(const std::string& path)
{
    return {.name = "stb_image", .run = [path] { stbi_image_free(decodeStb(path)); }};
}

bench::Job jpeg()
{
    const std::string path = bench::writeData("picture.jpg", media::encodeJpeg(newPicture(3), 90));
    return {"JPEG, 2048 x 2048",
            "pixel",
            SIDE * SIDE,
            {own<ImageJPEG>(path, 3), with("limit", path, 3, decodeJpeg), withStb(path)}};
}

bench::Job png()
{
    const std::string path = bench::writeData("picture.png", media::encodePng(newPicture(4)));
    return {"PNG, 2048 x 2048, RGBA",
            "pixel",
            SIDE * SIDE,
            {own<ImagePNG>(path, 4), with("limit", path, 4, decodePng),
             with("libspng", path, 4, decodeSpng), withStb(path)}};
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, {jpeg, png});
}
