#include "WaterView.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

/// The columns of a product of transforms that act on (x, y, 0, 1).
using Plane = std::array<std::array<double, 3>, 4>; // [row][column]

/// \param m  float[16], column-major
Plane planeOf(const float* m)
{
    Plane plane{};
    constexpr std::array<std::size_t, 3> COLUMNS = {0, 1, 3};
    for (std::size_t row = 0; row < 4; ++row) {
        for (std::size_t i = 0; i < 3; ++i) {
            plane[row][i] = static_cast<double>(m[4 * COLUMNS[i] + row]);
        }
    }
    return plane;
}

Plane product(const float* m, const Plane& plane)
{
    Plane result{};
    for (std::size_t row = 0; row < 4; ++row) {
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t k = 0; k < 4; ++k) {
                result[row][i] += static_cast<double>(m[4 * k + row]) * plane[k][i];
            }
        }
    }
    return result;
}

double at(const std::array<double, 3>& row, Place place)
{
    return row[0] * place.x + row[1] * place.y + row[2];
}

} // namespace

WaterView::WaterView(const float* root, const float* pivot, const float* water, double aspect,
                     double scale)
{
    const double focus = scale * std::sqrt(3.0); // 1 / tan(60 degrees / 2)
    const Plane eye = product(root, product(pivot, planeOf(water)));
    for (std::size_t i = 0; i < 3; ++i) {
        across[i] = eye[0][i] * focus / aspect;
        upward[i] = eye[1][i] * focus;
        depth[i] = eye[3][i] - eye[2][i]; // the eye is at z = 1 and looks along -z
    }
}

std::optional<Place> WaterView::placeAt(double x, double y) const
{
    constexpr double EDGE_ON = 1e-6;
    // across - u * depth = 0 and upward - v * depth = 0, for (x, y, 1) of the place.
    const double u = 2 * x - 1;
    const double v = 2 * y - 1;
    Row a{};
    Row b{};
    for (std::size_t i = 0; i < 3; ++i) {
        a[i] = across[i] - u * depth[i];
        b[i] = upward[i] - v * depth[i];
    }
    const double determinant = a[0] * b[1] - a[1] * b[0];
    if (!(std::abs(determinant) > EDGE_ON)) {
        return std::nullopt;
    }
    const Place place{(a[1] * b[2] - a[2] * b[1]) / determinant,
                      (a[2] * b[0] - a[0] * b[2]) / determinant};
    if (!(at(depth, place) > 0)) {
        return std::nullopt;
    }
    return Place{std::clamp(place.x, 0.0, 1.0), std::clamp(place.y, 0.0, 1.0)};
}

std::optional<Place> WaterView::pictureOf(Place place) const
{
    const double distance = at(depth, place);
    if (!(distance > 0)) {
        return std::nullopt;
    }
    return Place{(at(across, place) / distance + 1) / 2, (at(upward, place) / distance + 1) / 2};
}
