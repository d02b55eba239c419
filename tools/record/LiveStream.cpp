#include "LiveStream.h"

#include "WriteAll.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace record {

namespace {

/// A weighted sum of red, green and blue, in parts of 65536 of a step of the result.
struct Weights {
    int red, green, blue;

    int of(int r, int g, int b) const { return red * r + green * g + blue * b; }
};

// ITU-R BT.601: Y = 0.299 R + 0.587 G + 0.114 B, in 219 steps of 255; Cb and Cr are B - Y and R -
// Y, scaled to 224 steps.
constexpr Weights LUMA{16829, 33039, 6416};
constexpr Weights CB{-9714, -19071, 28785};
constexpr Weights CR{28785, -24104, -4681};

constexpr int ONE = 65536;

} // namespace

std::string y4mHeader(int width, int height, int fps)
{
    return "YUV4MPEG2 W" + std::to_string(width) + " H" + std::to_string(height) + " F" +
           std::to_string(fps) + ":1 Ip A1:1 C420jpeg\n";
}

std::vector<std::uint8_t> toYuv420(const Picture& picture)
{
    const auto width = static_cast<std::size_t>(picture.width);
    const auto height = static_cast<std::size_t>(picture.height);
    std::vector<std::uint8_t> planes(width * height * 3 / 2);
    std::uint8_t* const luma = planes.data();
    std::uint8_t* cb = luma + width * height;
    std::uint8_t* cr = cb + width * height / 4;
    for (std::size_t y = 0; y < height; y += 2) {
        for (std::size_t x = 0; x < width; x += 2) {
            int sum[3] = {};
            for (const std::size_t at :
                 {y * width + x, y * width + x + 1, (y + 1) * width + x, (y + 1) * width + x + 1}) {
                const std::uint8_t* const pixel = &picture.pixels[4 * at];
                luma[at] = static_cast<std::uint8_t>(
                    (LUMA.of(pixel[0], pixel[1], pixel[2]) + 16 * ONE + ONE / 2) / ONE);
                for (int i = 0; i < 3; ++i) {
                    sum[i] += pixel[i];
                }
            }
            const auto chroma = [&sum](const Weights& weights) {
                return static_cast<std::uint8_t>(
                    (weights.of(sum[0], sum[1], sum[2]) + 4 * 128 * ONE + 2 * ONE) / (4 * ONE));
            };
            *cb++ = chroma(CB);
            *cr++ = chroma(CR);
        }
    }
    return planes;
}

LiveStream::LiveStream(int descriptor, LiveFormat how, int width, int height, int fps)
    : output(descriptor), format(how)
{
    if (format == LiveFormat::y4m) {
        header = y4mHeader(width, height, fps);
    }
}

bool LiveStream::write(const Picture& frame)
{
    if (format == LiveFormat::raw) {
        return put(frame.pixels.data(), frame.pixels.size());
    }
    header += "FRAME\n";
    const std::vector<std::uint8_t> planes = toYuv420(frame);
    const bool wanted = put(header.data(), header.size()) && put(planes.data(), planes.size());
    header.clear();
    return wanted;
}

bool LiveStream::put(const void* data, std::size_t bytes) const
{
    if (writeAll(output, data, bytes)) {
        return true;
    }
    if (errno == EPIPE) {
        return false;
    }
    throw std::runtime_error(std::string("cannot write the stream: ") + std::strerror(errno));
}

} // namespace record
