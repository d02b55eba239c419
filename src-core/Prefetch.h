#pragma once

#include <cstddef>

/// Asks the processor to fetch \p bytes of an object that is used soon, while other work is done.
/// The object may be null or end earlier: a prefetch changes nothing and cannot fail.
inline void prefetch(const void* object, std::size_t bytes)
{
    constexpr std::size_t CACHE_LINE = 64;
    const char* const memory = static_cast<const char*>(object);
    for (std::size_t offset = 0; offset < bytes; offset += CACHE_LINE) {
        __builtin_prefetch(memory + offset);
    }
}
