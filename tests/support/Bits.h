#pragma once

#include <bit>
#include <cstdint>
#include <gmock/gmock.h>

/// The bits of a float: what tests compare where a precision is fixed. All NaN count as one value,
/// since the sign and payload of a computed NaN are the processor's.
inline std::uint32_t bits(float value)
{
    return value != value ? 0x7FC00000u : std::bit_cast<std::uint32_t>(value);
}

/// Matches a float that has the same bits as \p expected.
MATCHER_P(SameBits, expected, "")
{
    return bits(arg) == bits(expected);
}
