#pragma once

#include <cstddef>

/// What the readers of image files have in common. Private to this library.
namespace ImageFile {

/// The largest pixel buffer that a reader allocates, in bytes. Few bytes of a compressed file can
/// claim any size.
inline constexpr std::size_t MAX_BYTES = std::size_t{1} << 30;

/// Allocates a pixel buffer of \p width * \p height * \p components bytes, which the reader sets:
/// writing large pictures twice is what a reader's time would go to. Behind them the buffer stays
/// readable, as zeros, up to \p readable bytes per pixel: a texture upload reads the pixels in a
/// format that does not ask how many components there are.
/// \return to be released with delete[]; null when it is larger than MAX_BYTES or memory runs out
unsigned char* allocate(std::size_t width, std::size_t height, std::size_t components,
                        std::size_t readable);

/// \return a copy of the name, to be released with delete[]; null when memory runs out
char* copyName(const char* name);

} // namespace ImageFile
