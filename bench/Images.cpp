// Decoding pictures of 2048 by 2048 pixels into a buffer with the bottom row first.

#include "Bare.h"
#include "Data.h"
#include "Job.h"

#include "EncodePicture.h"
#include "ImageJPEG.h"
#include "ImagePNG.h"
#include "Random.h"

#include <cmath>
#include <cstdio>
#include <memory>
#include <spng.h>
#include <stb/stb_image.h>
#include <vector>

namespace {

constexpr std::size_t SIDE = 2048;

using bench::Pixels;

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

std::uint64_t hashOf(const unsigned char* pixels, std::size_t channels)
{
    return bench::hashOf(pixels, SIDE * SIDE * channels);
}

Pixels decodeSpng(const std::string& path)
{
    const bench::File file(std::fopen(path.c_str(), "rb"));
    spng_ctx* context = spng_ctx_new(0);
    spng_set_png_file(context, file.get());
    Pixels pixels(new unsigned char[SIDE * SIDE * 4]);
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
            {own<ImageJPEG>(path, 3), with("limit", path, 3, bench::decodeJpeg), withStb(path)}};
}

bench::Job png()
{
    const std::string path = bench::writeData("picture.png", media::encodePng(newPicture(4)));
    return {"PNG, 2048 x 2048, RGBA",
            "pixel",
            SIDE * SIDE,
            {own<ImagePNG>(path, 4), with("limit", path, 4, bench::decodePng),
             with("libspng", path, 4, decodeSpng), withStb(path)}};
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, {jpeg, png});
}
