#pragma once

#include <array>
#include <cmath>
#include <cstddef>

/// The scene's arithmetic and behavior in plain code, each step as it is written down, independent
/// of the project's own code: what the tests compare the project with, to the bit, and what the
/// benchmarks measure it against.
///
/// Everything is a template on its number type of single precision: Single in the tests, which
/// rounds each operation on its own, float in the benchmarks. A number type N offers, beside the
/// operators of float: static_cast<N> of a double or an int, static_cast<int> of it, and functions
/// wide(N), its value as a double, and magnitude(N), its absolute value.
namespace literal {

/// Radians per degree of the steering and the body, bits 0x3C8EFA2D.
constexpr float RADIANS = 0x1.1DF45Ap-6f;

inline double wide(float number)
{
    return static_cast<double>(number);
}

inline float magnitude(float number)
{
    return std::fabs(number);
}

template<typename N>
struct Triple {
    N x{}, y{}, z{};

    friend Triple operator+(const Triple& a, const Triple& b)
    {
        return {a.x + b.x, a.y + b.y, a.z + b.z};
    }
    friend Triple operator-(const Triple& a, const Triple& b)
    {
        return {a.x - b.x, a.y - b.y, a.z - b.z};
    }
    friend Triple operator*(const Triple& a, N factor)
    {
        return {a.x * factor, a.y * factor, a.z * factor};
    }
    friend Triple operator/(const Triple& a, N divisor)
    {
        return {a.x / divisor, a.y / divisor, a.z / divisor};
    }
};

template<typename N>
N dot(const Triple<N>& a, const Triple<N>& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

template<typename N>
Triple<N> cross(const Triple<N>& a, const Triple<N>& b)
{
    return {a.y * b.z - b.y * a.z, a.z * b.x - b.z * a.x, a.x * b.y - b.x * a.y};
}

template<typename N>
N length(const Triple<N>& a)
{
    return static_cast<N>(std::sqrt(wide(dot(a, a))));
}

/// A vector of length 0 stays as it is.
template<typename N>
Triple<N> normalized(const Triple<N>& a)
{
    const N l = length(a);
    return l == 0.0f ? a : a / l;
}

/// The difference in single precision; squares, sum and root in double.
template<typename N>
N distance(const Triple<N>& a, const Triple<N>& b)
{
    const Triple<N> d = a - b;
    return static_cast<N>(
        std::sqrt(wide(d.x) * wide(d.x) + wide(d.y) * wide(d.y) + wide(d.z) * wide(d.z)));
}

/// In radians; the cosine in single precision, its arc in double.
template<typename N>
N angleBetween(const Triple<N>& a, const Triple<N>& b)
{
    return static_cast<N>(std::acos(wide(dot(a, b) / (length(a) * length(b)))));
}

/// Scaled so that no component exceeds \p bound.
template<typename N>
Triple<N> limited(const Triple<N>& a, N bound)
{
    N largest = magnitude(a.x) > magnitude(a.y) ? magnitude(a.x) : magnitude(a.y);
    largest = largest > magnitude(a.z) ? largest : magnitude(a.z);
    return bound >= largest ? a : a * (bound / largest);
}

/// 16 elements, column-major.
template<typename N>
using Mat = std::array<N, 16>;

template<typename N>
Mat<N> scaling(const Triple<N>& by)
{
    return {by.x, 0.0f, 0.0f, 0.0f, 0.0f, by.y, 0.0f, 0.0f,
            0.0f, 0.0f, by.z, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f};
}

template<typename N>
Mat<N> identity()
{
    return scaling<N>({1.0f, 1.0f, 1.0f});
}

template<typename N>
Mat<N> translation(const Triple<N>& by)
{
    Mat<N> m = identity<N>();
    m[12] = by.x;
    m[13] = by.y;
    m[14] = by.z;
    return m;
}

/// About an axis of any length.
template<typename N>
Mat<N> rotation(const Triple<N>& axis, N degrees)
{
    const N radians = degrees * 0x1.921FB6p+1f / 180.0f;
    const N s = static_cast<N>(std::sin(wide(radians)));
    const N c = static_cast<N>(std::cos(wide(radians)));
    const auto [x, y, z] = axis / length(axis);
    const N one = 1.0f;
    Mat<N> m = identity<N>();
    m[0] = x * x + (one - x * x) * c;
    m[1] = x * y * (one - c) + z * s;
    m[2] = x * z * (one - c) - y * s;
    m[4] = y * x * (one - c) - z * s;
    m[5] = y * y + (one - y * y) * c;
    m[6] = y * z * (one - c) + x * s;
    m[8] = z * x * (one - c) + y * s;
    m[9] = z * y * (one - c) - x * s;
    m[10] = z * z + (one - z * z) * c;
    return m;
}

template<typename N>
Mat<N> rotationAboutZ(N degrees)
{
    return rotation<N>({0.0f, 0.0f, 1.0f}, degrees);
}

template<typename N>
Mat<N> product(const Mat<N>& a, const Mat<N>& b)
{
    Mat<N> out;
    for (std::size_t j = 0; j < 4; ++j) {
        for (std::size_t i = 0; i < 4; ++i) {
            out[4 * j + i] = a[i] * b[4 * j] + a[4 + i] * b[4 * j + 1] + a[8 + i] * b[4 * j + 2] +
                             a[12 + i] * b[4 * j + 3];
        }
    }
    return out;
}

} // namespace literal
