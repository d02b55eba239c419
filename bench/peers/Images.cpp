#include "Bare.h"
#include "Peers.h"

#include <cstdio>
#include <spng.h>
#include <stb/stb_image.h>

namespace bench::peers {
namespace {

/// Images of four components, the bottom row first.
struct Decoded {
    Pixels pixels;
    std::size_t bytes;
};

Decoded decodeSpng(const std::string& path)
{
    const File file(std::fopen(path.c_str(), "rb"));
    spng_ctx* context = spng_ctx_new(0);
    spng_set_png_file(context, file.get());
    spng_ihdr header;
    spng_get_ihdr(context, &header);
    const std::size_t row = std::size_t{header.width} * 4;
    Decoded decoded = {Pixels(new unsigned char[row * header.height]), row * header.height};
    spng_decode_image(context, nullptr, 0, SPNG_FMT_PNG, SPNG_DECODE_PROGRESSIVE);
    for (std::size_t y = header.height; y > 0; --y) {
        spng_decode_row(context, decoded.pixels.get() + row * (y - 1), row);
    }
    spng_ctx_free(context);
    return decoded;
}

/// Its JPEG decoder rounds differently: no result to compare.
Contender stbImage(const std::string& path)
{
    return {.name = "stb_image", .run = [path] {
                stbi_set_flip_vertically_on_load(1);
                int width = 0;
                int height = 0;
                int channels = 0;
                stbi_image_free(stbi_load(path.c_str(), &width, &height, &channels, 0));
            }};
}

} // namespace

std::vector<Contender> jpegReaders(const std::string& path)
{
    return {stbImage(path)};
}

std::vector<Contender> pngReaders(const std::string& path)
{
    return {{.name = "libspng",
             .run = [path] { decodeSpng(path); },
             .result =
                 [path] {
                     const Decoded decoded = decodeSpng(path);
                     return hashOf(decoded.pixels.get(), decoded.bytes);
                 }},
            stbImage(path)};
}

} // namespace bench::peers
