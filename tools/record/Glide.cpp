#include "Glide.h"

#include <cmath>

namespace record {

double Glide::sumAt(std::int64_t step) const
{
    return step == last ? to : from + (to - from) * shareAt(step);
}

double Glide::productAt(std::int64_t step) const
{
    return step == last ? to : from * std::pow(to / from, shareAt(step));
}

double Glide::shareAt(std::int64_t step) const
{
    const double time = static_cast<double>(step - first) / static_cast<double>(last - first);
    return time * time * (3 - 2 * time);
}

} // namespace record
