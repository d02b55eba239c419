#pragma once

#include "BasicImage.h"

#include <cstddef>

/// Shared by the image readers and by the textures of kelpix::core. Private to both.
namespace ImageFile {

/// The largest pixel buffer that a reader allocates, in bytes. A small compressed file can claim an
/// image of any size.
inline constexpr std::size_t MAX_BYTES = std::size_t{1} << 30;

/// The bytes per pixel that the upload of a texture reads, 3 as RGB or 4 as RGBA. It depends on the
/// kind of file only, not on the components of the image.
constexpr std::size_t uploadedComponents(IMAGE_TYPE type)
{
    switch (type) {
    case IMAGE_JPEG:
        return 3;
    case IMAGE_PNG:
        return 4;
    }
    return 4;
}

/// Allocates the pixel buffer of an image, padded with zeros to what an upload of the texture
/// reads. The pixels themselves are not set: the reader writes them all.
/// \param channels  bytes per pixel
/// \return to be released with delete[]; null when it is larger than MAX_BYTES or memory runs out
unsigned char* allocate(IMAGE_TYPE type, std::size_t width, std::size_t height,
                        std::size_t channels);

/// \return a copy of the name, to be released with delete[]; null when memory runs out
char* copyName(const char* name);

} // namespace ImageFile
