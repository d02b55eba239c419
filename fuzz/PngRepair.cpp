/// Keeps the chunks of a mutated PNG file whole: a picture ends at the first one with a wrong
/// checksum.

#include "Repair.h"

#include <zlib.h>

namespace {

std::uint32_t bigEndian(const std::uint8_t* bytes)
{
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
           std::uint32_t{bytes[2]} << 8 | bytes[3];
}

} // namespace

void repair(std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t SIGNATURE = 8;
    constexpr std::size_t FRAME = 12; // length, name and checksum of a chunk
    std::size_t at = SIGNATURE;
    while (at + FRAME <= size && bigEndian(data + at) <= size - at - FRAME) {
        const std::uint32_t length = bigEndian(data + at);
        std::uint8_t* const end = data + at + 8 + length;
        const auto sum = static_cast<std::uint32_t>(crc32(0, data + at + 4, length + 4));
        for (int i = 0; i < 4; ++i) {
            end[i] = static_cast<std::uint8_t>(sum >> (24 - 8 * i));
        }
        at += FRAME + length;
    }
}
