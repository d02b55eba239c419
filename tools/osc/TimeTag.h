#pragma once

#include <chrono>
#include <cstdint>

namespace osc {

/// The time of a bundle: seconds since 1900 in the upper 32 bits, fractions of a second in the
/// lower ones. It begins anew every 136 years, so only differences mean anything.
using TimeTag = std::uint64_t;

/// The time tag of a bundle that is to be done when it arrives.
constexpr TimeTag IMMEDIATELY = 1;

/// \return the time from \p start to \p end, negative when the end is before the start. Rounded
/// down to a
///         nanosecond.
inline std::chrono::nanoseconds between(TimeTag start, TimeTag end)
{
    const auto ticks = static_cast<std::int64_t>(end - start);
    const std::int64_t seconds = ticks >> 32;
    const std::int64_t fraction = ticks & 0xFFFFFFFF;
    return std::chrono::nanoseconds(seconds * 1000000000 + ((fraction * 1000000000) >> 32));
}

/// \return the time tag of a moment
inline TimeTag timeTagOf(std::chrono::system_clock::time_point moment)
{
    const auto since1970 =
        std::chrono::duration_cast<std::chrono::nanoseconds>(moment.time_since_epoch()).count();
    const auto seconds = static_cast<std::uint64_t>(since1970 / 1000000000) + 2208988800U;
    const auto fraction = static_cast<std::uint64_t>(since1970 % 1000000000);
    return (seconds << 32) + (fraction << 32) / 1000000000;
}

} // namespace osc
