#include "BasicImage.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>

namespace {

/// The stride along an axis of \p count copied pixels, in source pixels.
std::int64_t strideOf(int count, float scale)
{
    if (!std::isfinite(scale)) {
        return 0;
    }
    constexpr float LIMIT = 2147483648.0f;
    const float length = static_cast<float>(count) * scale;
    const int whole = length >= LIMIT    ? std::numeric_limits<int>::max()
                      : length <= -LIMIT ? std::numeric_limits<int>::min()
                                         : static_cast<int>(length);
    return whole / count;
}

} // namespace

int BasicImage::getSubImage(const unsigned char* inbuf, int width, int height, unsigned char* copy,
                            int x, int y, int w, int h, int comp, float scale)
{
    if (scale == 0) {
        std::puts("Scale = 0! returning");
        return 0;
    }
    if (x < 0 || x >= width) {
        std::printf("Start x not in picture bounds. pic width %d!\n", width);
        return 0;
    }
    if (y < 0 || y >= height) {
        std::printf("Start y not in picture bounds! pic height %d!\n", height);
        return 0;
    }
    if (w <= 0 || h <= 0 || comp <= 0) {
        return 1;
    }

    const std::int64_t skipX = strideOf(w, scale);
    const std::int64_t skipY = strideOf(h, scale);
    unsigned char* out = copy;
    for (int j = 0; j < h; ++j) {
        const std::int64_t row = j * skipY + y;
        for (int i = 0; i < w; ++i) {
            const std::int64_t column = i * skipX + x;
            const bool inside =
                inbuf != nullptr && row >= 0 && row < height && column >= 0 && column < width;
            if (inside) {
                out = std::copy_n(inbuf + (row * width + column) * comp, comp, out);
            } else {
                out = std::fill_n(out, comp, static_cast<unsigned char>(0));
            }
        }
    }
    return 1;
}
