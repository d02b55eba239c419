#pragma once

#include "ImagePNG.h"

#include <cstddef>

namespace media {

/// The RGBA pixels of a sprite.
class Sprite {
public:
    /// Borrows the image, which has four channels.
    explicit Sprite(const ImagePNG& from) : image(from) {}

    int width() const { return image.w; }
    int height() const { return image.h; }

    /// \param y  from the top
    const unsigned char* at(int x, int y) const
    {
        const auto row = static_cast<std::size_t>(image.h - 1 - y);
        return image.buffer +
               (row * static_cast<std::size_t>(image.w) + static_cast<std::size_t>(x)) * 4;
    }

    int alpha(int x, int y) const { return at(x, y)[3]; }

    /// The luma of a pixel, 0 to 255.
    int brightness(int x, int y) const
    {
        const unsigned char* p = at(x, y);
        return (p[0] * 299 + p[1] * 587 + p[2] * 114) / 1000;
    }

private:
    const ImagePNG& image;
};

} // namespace media
