#include "RecordedPlace.h"

#include "Sensor.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace RecordedPlace {

namespace {

/// Searches the number whose image comes nearest to \p wanted.
/// \param guess    less than 1e-5 of its magnitude, or of 1, beside that number
/// \param imageOf  grows with its argument, or stays
template<typename Image>
float nearest(float wanted, double guess, Image imageOf)
{
    const double reach = 1e-5 * std::max(1.0, std::abs(guess));
    auto low = static_cast<float>(guess - reach);
    auto high = static_cast<float>(guess + reach);
    for (float middle = std::midpoint(low, high); low < middle && middle < high;
         middle = std::midpoint(low, high)) {
        (imageOf(middle) < wanted ? low : high) = middle;
    }
    return wanted - imageOf(low) < imageOf(high) - wanted ? low : high;
}

} // namespace

Vec3 placeOf(const Vec3& recorded, int figure)
{
    return Sensor::placeOf(recorded * Sensor::SCALE, figure);
}

Vec3 recordFor(Place place, int figure, float z)
{
    const Vec3 home = placeOf({0, 0, 0}, figure);
    constexpr auto SCALE = static_cast<double>(Sensor::SCALE);
    const float x =
        nearest(static_cast<float>(place.x), (place.x - static_cast<double>(home.x)) / SCALE,
                [figure](float record) {
                    return placeOf({record, 0, 0}, figure).x;
                });
    const float y =
        nearest(static_cast<float>(place.y), (place.y - static_cast<double>(home.y)) / SCALE,
                [figure](float record) {
                    return placeOf({0, record, 0}, figure).y;
                });
    return {x, y, z};
}

} // namespace RecordedPlace
