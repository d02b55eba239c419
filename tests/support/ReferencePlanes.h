#pragma once

#include "Reference.h"

/// The planes of a view in plain code, and what is inside of them.
namespace reference {

/// Left, right, bottom, top, near, far; normalized.
using Planes = std::array<std::array<Single, 4>, 6>;

Planes planesOf(const Mat& projection, const Mat& modelview);
bool pointIsInside(const Planes& planes, const Triple& point);

/// False when all corners of the box are outside one of the planes.
bool boxIsInView(const Planes& planes, const Triple& low, const Triple& high);

} // namespace reference
