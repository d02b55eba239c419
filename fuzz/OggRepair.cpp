/// Keeps the pages of a mutated Ogg file whole: a page with a wrong checksum is skipped, and
/// nothing behind it reaches the decoder.

#include "Repair.h"

#include <cstring>
#include <ogg/ogg.h>

namespace {

constexpr std::size_t HEADER = 27;   ///< bytes of a page before its table of segments
constexpr std::size_t SEGMENTS = 26; ///< where the number of segments is

} // namespace

void repair(std::uint8_t* data, std::size_t size)
{
    std::size_t at = 0;
    while (at + HEADER <= size) {
        std::uint8_t* const page = data + at;
        const std::size_t header = HEADER + page[SEGMENTS];
        if (std::memcmp(page, "OggS", 4) != 0 || at + header > size) {
            ++at;
            continue;
        }
        std::size_t body = 0;
        for (std::size_t i = HEADER; i < header; ++i) {
            body += page[i];
        }
        if (at + header + body > size) {
            ++at;
            continue;
        }
        ogg_page whole = {page, static_cast<long>(header), page + header, static_cast<long>(body)};
        ogg_page_checksum_set(&whole);
        at += header + body;
    }
}
