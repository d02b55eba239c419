#include "Neighborhood.h"

#include <bit>
#include <cstdint>

double largestSquareWithin(float radius)
{
    const auto isWithin = [radius](std::uint64_t bits) {
        return static_cast<float>(std::sqrt(std::bit_cast<double>(bits))) <= radius;
    };
    if (!isWithin(0)) {
        return -1;
    }
    // Positive doubles are in the order of their bits, and their roots keep that order.
    std::uint64_t within = 0;
    std::uint64_t last = std::bit_cast<std::uint64_t>(std::numeric_limits<double>::infinity());
    while (within < last) {
        const std::uint64_t middle = last - (last - within) / 2;
        if (isWithin(middle)) {
            within = middle;
        } else {
            last = middle - 1;
        }
    }
    return std::bit_cast<double>(within);
}
