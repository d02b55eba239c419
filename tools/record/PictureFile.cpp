#include "PictureFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <png.h>
#include <stdexcept>
#include <string>

namespace record {

namespace {

std::vector<std::uint8_t> withoutAlpha(const Picture& picture)
{
    std::vector<std::uint8_t> rgb;
    rgb.reserve(picture.pixels.size() / 4 * 3);
    for (std::size_t at = 0; at + 3 < picture.pixels.size(); at += 4) {
        rgb.insert(rgb.end(), &picture.pixels[at], &picture.pixels[at + 3]);
    }
    return rgb;
}

[[noreturn]] void fail(int error, const char* otherwise)
{
    throw std::runtime_error(error != 0 ? std::strerror(error) : otherwise);
}

} // namespace

void writePng(const std::filesystem::path& path, const Picture& picture)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_RGB;

    std::FILE* const file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) {
        fail(errno, "");
    }
    const std::vector<std::uint8_t> rgb = withoutAlpha(picture);
    errno = 0;
    const bool written = png_image_write_to_stdio(&image, file, 0, rgb.data(), 0, nullptr) != 0;
    const int error = errno;
    const bool closed = std::fclose(file) == 0;
    if (!written) {
        fail(error, image.message);
    }
    if (!closed) {
        fail(errno, "the file cannot be closed");
    }
}

} // namespace record
