#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace record {

/// A time or a length in whole microseconds: every decimal that people write is exact in it.
using Microseconds = std::int64_t;

constexpr Microseconds SECOND = 1000000;

/// The longest time that an option or a script may name: ten hours.
constexpr Microseconds LONGEST_TIME = 36000 * SECOND;

/// Reads seconds as people write them: digits, and behind a point at most six more ("12", "0.025").
/// \return nothing for any other text, or for more than LONGEST_TIME
std::optional<Microseconds> parseTime(std::string_view text);

} // namespace record
