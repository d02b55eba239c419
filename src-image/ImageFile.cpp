#include "ImageFile.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace ImageFile {

unsigned char* allocate(IMAGE_TYPE type, std::size_t width, std::size_t height,
                        std::size_t channels)
{
    const std::size_t pixels = width * height * channels;
    const std::size_t bytes = std::max(pixels, width * height * uploadedComponents(type));
    if (bytes > MAX_BYTES) {
        return nullptr;
    }
    auto* buffer = new (std::nothrow) unsigned char[bytes];
    if (buffer != nullptr) {
        std::fill(buffer + pixels, buffer + bytes, static_cast<unsigned char>(0));
    }
    return buffer;
}

char* copyName(const char* name)
{
    const std::size_t bytes = std::strlen(name) + 1;
    char* copy = new (std::nothrow) char[bytes];
    if (copy != nullptr) {
        std::memcpy(copy, name, bytes);
    }
    return copy;
}

} // namespace ImageFile
