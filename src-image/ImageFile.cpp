#include "ImageFile.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <new>
#include <system_error>

namespace ImageFile {

Handle open(const char* name)
{
    std::error_code error;
    if (name == nullptr || !std::filesystem::is_regular_file(name, error)) {
        return nullptr;
    }
    return Handle(std::fopen(name, "rb"));
}

unsigned char* allocate(std::size_t width, std::size_t height, std::size_t components,
                        std::size_t readable)
{
    const std::size_t pixels = width * height * components;
    const std::size_t bytes = std::max(pixels, width * height * readable);
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
