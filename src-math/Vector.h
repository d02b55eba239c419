#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

/// Radians per degree, in single precision.
/// Fixed behavior: DEG2RAD is 3.14159 / 180, slightly less than pi / 180. Pinned by
/// VectorTest.RotateTakesTheNewXForTheNewY; do not correct.
inline constexpr float DEG2RAD = static_cast<float>(3.14159 / 180);
static_assert(std::bit_cast<std::uint32_t>(DEG2RAD) == 0x3C8EFA2D);

/// Three single-precision components: a position, velocity or orientation of the scene.
///
/// Arithmetic is in single precision unless an operation says otherwise. limit, rotate and
/// MinCompDist are not the textbook operations of these names. Nothing here fails; bad numbers give
/// infinities or NaN.
class Vec3 {
public:
    float x = 0;
    float y = 0;
    float z = 0;

    /// (0, 0, 0)
    Vec3() = default;
    Vec3(float x_, float y_, float z_) : x(x_), y(y_), z(z_) {}
    Vec3(const Vec3& v) = default;
    Vec3& operator=(const Vec3& v) = default;

    Vec3 operator+(const Vec3& v) const { return {x + v.x, y + v.y, z + v.z}; }
    Vec3 operator-(const Vec3& v) const { return {x - v.x, y - v.y, z - v.z}; }
    Vec3 operator-() const { return {-x, -y, -z}; }
    Vec3 operator*(float t) const { return {x * t, y * t, z * t}; }
    /// Divides each component by \p t, unchecked: 0 gives infinities or NaN.
    Vec3 operator/(float t) const { return {x / t, y / t, z / t}; }

    /// The Euclidean length: the sum of squares in single, its root in double precision.
    float length() const
    {
        return static_cast<float>(std::sqrt(static_cast<double>(x * x + y * y + z * z)));
    }

    /// Divides the vector by its length; one of length 0 stays as it is.
    void normalize();

    /// Takes the components of \p v.
    void copy(const Vec3& v) { *this = v; }

    void set(float x_, float y_, float z_)
    {
        x = x_;
        y = y_;
        z = z_;
    }

    /// Scales the vector down so that no component exceeds \p lim in magnitude; keeps
    /// the direction.
    /// Fixed behavior: Vec3::limit bounds the largest component, not the length. Pinned by
    /// VectorTest.LimitBoundsTheLargestComponentNotTheLength; do not correct.
    void limit(float lim);

    /// Truncates each component to a 32-bit integer and shifts it right by \p n bits, keeping the
    /// sign. Components beyond that range saturate, NaN counts as 0. \p n of 0 or less does not
    /// shift; 32 or more leaves 0 or -1.
    void rshift(int n);

    /// The same with a shift to the left; bits beyond the 32 are lost.
    void lshift(int n);

    /// True when a component is neither 0 nor -0.
    bool isnonzero() const { return x != 0 || y != 0 || z != 0; }

    /// Turns the vector in the x-y plane by \p alpha degrees, clockwise.
    /// Fixed behavior: Vec3::rotate computes the new y from the new x, not from the old one, so it
    /// is not an exact rotation and changes the length. Pinned by
    /// VectorTest.RotateTakesTheNewXForTheNewY; do not correct.
    void rotate(float alpha);

    /// True when all three components are exactly equal.
    static bool Equal(const Vec3& a, const Vec3& b)
    {
        return a.x == b.x && a.y == b.y && a.z == b.z;
    }

    static float DotProduct(const Vec3& a, const Vec3& b)
    {
        return a.x * b.x + a.y * b.y + a.z * b.z;
    }

    /// The right-handed cross product a x b.
    static Vec3 CrossProduct(const Vec3& a, const Vec3& b)
    {
        return {a.y * b.z - b.y * a.z, a.z * b.x - b.z * a.x, a.x * b.y - b.x * a.y};
    }

    /// The squared distance of two points: the difference in single precision, the squares and
    /// their sum in double.
    static double SquaredDistance(const Vec3& a, const Vec3& b)
    {
        const Vec3 d = a - b;
        const double dx = static_cast<double>(d.x);
        const double dy = static_cast<double>(d.y);
        const double dz = static_cast<double>(d.z);
        return dx * dx + dy * dy + dz * dz;
    }

    /// The distance of two points: the root of SquaredDistance, rounded to single precision.
    static float EuclDistance(const Vec3& a, const Vec3& b)
    {
        return static_cast<float>(std::sqrt(SquaredDistance(a, b)));
    }

    /// The Chebyshev distance of two points.
    /// Fixed behavior: Vec3::MinCompDist is, despite its name, the largest difference of a
    /// component, not the smallest. Pinned by
    /// VectorTest.MinCompDistIsTheLargestComponentDifference; do not correct.
    static float MinCompDist(const Vec3& a, const Vec3& b);

    /// The angle between two vectors in radians; NaN for a vector of length 0.
    /// Fixed behavior: Vec3::AngleBetween does not clamp the cosine. Rounding can push that of
    /// parallel vectors beyond 1, and the result is NaN then. Pinned by
    /// VectorTest.AngleBetweenIsNeitherClampedNorChecked; do not correct.
    static float AngleBetween(const Vec3& a, const Vec3& b);
};
