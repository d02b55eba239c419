#include "Pace.h"

#include <algorithm>

namespace record {

Pace::Duration Pace::waitAt(Clock::time_point now)
{
    constexpr std::int64_t SECOND = std::nano::den;
    if (frame == 0) {
        start = now;
    }
    // Whole seconds separately: the product would overflow after some months.
    const Duration due(frame / rate * SECOND + frame % rate * SECOND / rate);
    ++frame;
    const Duration early = start + due - now;
    if (early < -LONGEST_DELAY) {
        start -= early;
        given -= early;
    }
    return std::max(early, Duration::zero());
}

} // namespace record
