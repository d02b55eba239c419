#pragma once

#include <chrono>
#include <cstdint>

namespace record {

/// The clock of a live stream: when each of its frames is due. A frame that is late goes out at
/// once, and so do those after it until the stream is in time again. More than LONGEST_DELAY is not
/// made up for: the clock is set to the late frame, and the rest of the stream is that much later.
class Pace {
public:
    using Clock = std::chrono::steady_clock;
    using Duration = std::chrono::nanoseconds;

    static constexpr Duration LONGEST_DELAY = std::chrono::seconds(1);

    /// \param fps  frames per second
    explicit Pace(int fps) : rate(fps) {}

    /// How long the next frame has to wait; 0 if it is due. The first one is due at once.
    Duration waitAt(Clock::time_point now);

    /// What has not been made up for.
    Duration lost() const { return given; }

private:
    std::int64_t rate;
    std::int64_t frame = 0; ///< the next one
    Clock::time_point start;
    Duration given{0};
};

} // namespace record
