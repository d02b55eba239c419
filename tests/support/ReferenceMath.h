#pragma once

#include "Single.h"

#include <array>

/// Vectors, matrices and plane tests as the scene's arithmetic is written down, each operation on a
/// line of plain code and independent of src-math and src-core.
namespace reference {

/// Radians per degree of the steering and the body, bits 0x3C8EFA2D.
inline const Single RADIANS = Single(0x1.1DF45Ap-6f);

struct Triple {
    Single x, y, z;
};

Triple operator+(const Triple& a, const Triple& b);
Triple operator-(const Triple& a, const Triple& b);
Triple operator*(const Triple& a, Single factor);
Triple operator/(const Triple& a, Single divisor);

Single dot(const Triple& a, const Triple& b);
Triple cross(const Triple& a, const Triple& b);
Single length(const Triple& a);
Triple normalized(const Triple& a);

/// The difference in single precision, squares, sum and root in double.
Single distance(const Triple& a, const Triple& b);

/// In radians; the cosine in single precision, its arc in double.
Single angleBetween(const Triple& a, const Triple& b);

/// Scaled so that no component exceeds \p bound.
Triple limited(const Triple& a, Single bound);

/// 16 elements, column after column.
using Mat = std::array<Single, 16>;

Mat identity();
Mat product(const Mat& a, const Mat& b);
Mat translation(Single x, Single y, Single z);
Mat scaling(Single x, Single y, Single z);
Mat rotationAboutZ(Single degrees);

/// Left, right, bottom, top, near, far; normalised.
using Planes = std::array<std::array<Single, 4>, 6>;

Planes planesOf(const Mat& projection, const Mat& modelview);
bool pointIsInside(const Planes& planes, const Triple& point);

/// False when all corners of the box are outside one of the planes.
bool boxIsInView(const Planes& planes, const Triple& low, const Triple& high);

} // namespace reference
