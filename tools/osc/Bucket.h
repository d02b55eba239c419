#pragma once

#include <algorithm>
#include <chrono>

namespace osc {

/// A token bucket: fills at a steady rate up to its capacity, and may be emptied below zero, into
/// debt.
class Bucket {
public:
    /// \param rate      per second
    /// \param capacity  what is in it at the start
    Bucket(double rate, double capacity) : rate(rate), capacity(capacity), level(capacity) {}

    /// \param now  since some moment; it never goes back
    /// \return what is in it now
    double fill(std::chrono::duration<double> now)
    {
        level = std::min(capacity, level + rate * (now - last).count());
        last = now;
        return level;
    }

    void spend(double amount) { level -= amount; }

    /// \return the time from the last filling until there is \p amount in it
    std::chrono::duration<double> until(double amount) const
    {
        return std::chrono::duration<double>(std::max(0.0, (amount - level) / rate));
    }

private:
    double rate;
    double capacity;
    double level;
    std::chrono::duration<double> last{0};
};

} // namespace osc
