#pragma once

#include <cstdint>

namespace record {

/// A smooth motion of a value from one number to another, over steps of the scene. It starts and
/// ends at rest: after the share u of its time, the share 3 u^2 - 2 u^3 of the way is done.
struct Glide {
    std::int64_t first; ///< the step at which the value is \p from
    std::int64_t last;  ///< the step at which it is \p to; not before first
    double from;
    double to;

    /// The value at a step from first to last, in equal differences for equal shares of the way:
    /// for a place. Exactly \p to at the last step.
    double sumAt(std::int64_t step) const;

    /// The same in equal ratios, for a factor: a zoom then looks equally fast all the way. from and
    /// to are above 0.
    double productAt(std::int64_t step) const;

private:
    double shareAt(std::int64_t step) const;
};

} // namespace record
