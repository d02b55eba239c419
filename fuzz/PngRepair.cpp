/// Repairs the checksums of PNG chunks: an image ends at the first chunk with a wrong one.

#include "Repair.h"

#include <zlib.h>

namespace {

std::uint32_t bigEndian(const std::uint8_t* bytes)
{
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
           std::uint32_t{bytes[2]} << 8 | bytes[3];
}

} // namespace

std::size_t repair(std::uint8_t* file, std::size_t size, std::size_t at)
{
    constexpr std::size_t SIGNATURE = 8;
    constexpr std::size_t FRAME = 12; // length, name and checksum of a chunk
    if (at == 0) {
        return SIGNATURE;
    }
    std::uint8_t* const chunk = file + at;
    if (size - at < FRAME || size - at - FRAME < bigEndian(chunk)) {
        return size;
    }
    const std::uint32_t length = bigEndian(chunk);
    const auto sum = static_cast<std::uint32_t>(crc32(0, chunk + 4, length + 4));
    for (int i = 0; i < 4; ++i) {
        chunk[8 + length + static_cast<std::size_t>(i)] =
            static_cast<std::uint8_t>(sum >> (24 - 8 * i));
    }
    return at + FRAME + length;
}
