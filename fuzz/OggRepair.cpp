/// Repairs the checksums of Ogg pages: a decoder skips a page with a wrong one.

#include "Repair.h"

#include <cstring>
#include <ogg/ogg.h>

std::size_t repair(std::uint8_t* file, std::size_t size, std::size_t at)
{
    constexpr std::size_t HEADER = 27;   // bytes of a page before its table of segments
    constexpr std::size_t SEGMENTS = 26; // where the number of segments is
    if (size - at < HEADER) {
        return size;
    }
    std::uint8_t* const page = file + at;
    const std::size_t header = HEADER + page[SEGMENTS];
    if (std::memcmp(page, "OggS", 4) != 0 || size - at < header) {
        return at + 1;
    }
    std::size_t body = 0;
    for (std::size_t i = HEADER; i < header; ++i) {
        body += page[i];
    }
    if (size - at - header < body) {
        return at + 1;
    }
    ogg_page whole = {page, static_cast<long>(header), page + header, static_cast<long>(body)};
    ogg_page_checksum_set(&whole);
    return at + header + body;
}
