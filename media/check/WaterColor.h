#pragma once

#include <array>

namespace media {

/// The mean color of a part of the water, red, green and blue of 0 .. 255, as the scene shows it.
using WaterColor = std::array<float, 3>;

} // namespace media
