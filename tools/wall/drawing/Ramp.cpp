#include "Ramp.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace Ramp {

namespace {

/// The shares along one side of the small tile.
/// \param first,last  widths of the two ramps
/// \param even        there is a pixel between them
std::vector<double> sharesOf(int first, int last, bool even)
{
    std::vector<double> shares;
    shares.reserve(static_cast<std::size_t>(first) + static_cast<std::size_t>(last) + 1);
    for (int pixel = 0; pixel < first; ++pixel) {
        shares.push_back(share(pixel, first));
    }
    if (even) {
        shares.push_back(1);
    }
    for (int pixel = last - 1; pixel >= 0; --pixel) {
        shares.push_back(share(pixel, last));
    }
    return shares;
}

} // namespace

double share(int pixel, int width)
{
    if (pixel >= width) {
        return 1;
    }
    const double u = (pixel + 0.5) / width;
    return u < 0.5 ? 2 * u * u : 1 - 2 * (1 - u) * (1 - u);
}

double valueFor(double light, double gamma)
{
    return std::pow(light, 1 / gamma);
}

bool Factors::changeSomething() const
{
    return std::any_of(rgb.begin(), rgb.end(), [](unsigned char factor) { return factor != 255; });
}

Factors factorsOf(const WallTile& tile)
{
    const int width = tile.desktop.w;
    const int height = tile.desktop.h;
    Factors result;
    // In a simulated wall rounding may have made them wider than their window.
    result.left = std::min(tile.blend.left, width);
    result.right = std::min(tile.blend.right, width - result.left);
    result.bottom = std::min(tile.blend.bottom, height);
    result.top = std::min(tile.blend.top, height - result.bottom);
    const auto across = sharesOf(result.left, result.right, result.left + result.right < width);
    const auto upward = sharesOf(result.bottom, result.top, result.bottom + result.top < height);
    result.columns = static_cast<int>(across.size());
    result.rows = static_cast<int>(upward.size());
    result.rgb.reserve(3 * across.size() * upward.size());
    for (const double y : upward) {
        for (const double x : across) {
            for (const float gain : tile.gain) {
                const double light = x * y * static_cast<double>(gain);
                const double value = valueFor(light, static_cast<double>(tile.blend.gamma));
                result.rgb.push_back(static_cast<unsigned char>(std::lround(255 * value)));
            }
        }
    }
    return result;
}

} // namespace Ramp
