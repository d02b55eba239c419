/// The input is the arguments of BasicImage::getSubImage, then the pixels.

#include "BasicImage.h"
#include "Harness.h"

#include <cmath>
#include <memory>

namespace {

using Pixels = std::unique_ptr<unsigned char[]>;

struct Arguments {
    int width;
    int height;
    int x;
    int y;
    int w;
    int h;
    int comp;
    float scale;
};

/// What pixel (i, j) of the copy has to be, in wider arithmetic; null outside of the image.
const unsigned char* source(const Arguments& a, const unsigned char* picture, int i, int j)
{
    const auto stride = [&](int count) {
        const double length = static_cast<double>(static_cast<float>(count) * a.scale);
        const double whole = std::trunc(std::fmin(std::fmax(length, -2147483648.0), 2147483647.0));
        return std::isfinite(a.scale) ? std::trunc(whole / count) : 0.0;
    };
    const double column = i * stride(a.w) + a.x;
    const double row = j * stride(a.h) + a.y;
    if (column < 0 || row < 0 || column >= a.width || row >= a.height) {
        return nullptr;
    }
    return picture + (static_cast<int>(row) * a.width + static_cast<int>(column)) * a.comp;
}

void compare(const Arguments& a, const unsigned char* picture, const unsigned char* copy)
{
    for (int j = 0; j < a.h; ++j) {
        for (int i = 0; i < a.w; ++i) {
            const unsigned char* const from = source(a, picture, i, j);
            for (int k = 0; k < a.comp; ++k) {
                fuzz::expect(*copy++ == (from == nullptr ? 0 : from[k]),
                             "the pixel is the source's");
            }
        }
    }
}

} // namespace

void fuzz::test(std::string_view input)
{
    Numbers numbers(input);
    const Arguments a = {.width = numbers.take<signed char>() % 40,
                         .height = numbers.take<signed char>() % 40,
                         .x = numbers.take<signed char>(),
                         .y = numbers.take<signed char>(),
                         .w = numbers.take<signed char>() % 40,
                         .h = numbers.take<signed char>() % 40,
                         .comp = numbers.take<signed char>() % 6,
                         .scale = numbers.take<float>()};
    const auto bytes = [](int w, int h, int comp) {
        return static_cast<std::size_t>(std::max(w, 0) * std::max(h, 0) * std::max(comp, 0));
    };
    // Exactly the promised sizes, so that an access beyond them is a finding.
    const std::size_t size = bytes(a.width, a.height, a.comp);
    const Pixels picture(new unsigned char[size]);
    std::generate_n(picture.get(), size, [&] { return numbers.take<unsigned char>(); });
    const Pixels copy(new unsigned char[bytes(a.w, a.h, a.comp)]);

    const bool refused = a.scale == 0 || a.x < 0 || a.x >= a.width || a.y < 0 || a.y >= a.height;
    const int result = BasicImage::getSubImage(picture.get(), a.width, a.height, copy.get(), a.x,
                                               a.y, a.w, a.h, a.comp, a.scale);
    expect(result == (refused ? 0 : 1), "a window that starts outside is refused");
    if (!refused) {
        compare(a, picture.get(), copy.get());
    }
}
