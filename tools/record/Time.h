#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace record {

/// A time or a length in whole microseconds: decimals of up to six digits are exact.
using Microseconds = std::int64_t;

constexpr Microseconds SECOND = 1000000;

/// The longest time that an option or a script may name: ten hours.
constexpr Microseconds LONGEST_TIME = 36000 * SECOND;

/// Reads seconds: digits, and after a point at most six more ("12", "0.025").
/// \return nothing for any other text, or for more than LONGEST_TIME
std::optional<Microseconds> parseTime(std::string_view text);

} // namespace record
