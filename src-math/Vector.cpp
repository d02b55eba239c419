#include "Vector.h"

#include <limits>

namespace {

std::int32_t truncate(float value)
{
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= 2147483648.0f) {
        return std::numeric_limits<std::int32_t>::max();
    }
    if (value <= -2147483648.0f) {
        return std::numeric_limits<std::int32_t>::min();
    }
    return static_cast<std::int32_t>(value);
}

float shiftedRight(float value, int n)
{
    const int bits = n < 0 ? 0 : n > 31 ? 31 : n;
    return static_cast<float>(truncate(value) >> bits);
}

float shiftedLeft(float value, int n)
{
    const auto wide = static_cast<std::uint64_t>(static_cast<std::uint32_t>(truncate(value)));
    const int bits = n < 0 ? 0 : n > 32 ? 32 : n;
    return static_cast<float>(static_cast<std::int32_t>(static_cast<std::uint32_t>(wide << bits)));
}

/// The largest absolute component.
float largest(const Vec3& v)
{
    const float ax = std::fabs(v.x);
    const float ay = std::fabs(v.y);
    const float az = std::fabs(v.z);
    const float m = ax > ay ? ax : ay;
    return m > az ? m : az;
}

} // namespace

void Vec3::normalize()
{
    const float len = length();
    if (len == 0) {
        return;
    }
    x /= len;
    y /= len;
    z /= len;
}

void Vec3::limit(float lim)
{
    const float m = largest(*this);
    if (lim >= m) {
        return;
    }
    const float f = lim / m;
    x *= f;
    y *= f;
    z *= f;
}

void Vec3::rshift(int n)
{
    set(shiftedRight(x, n), shiftedRight(y, n), shiftedRight(z, n));
}

void Vec3::lshift(int n)
{
    set(shiftedLeft(x, n), shiftedLeft(y, n), shiftedLeft(z, n));
}

void Vec3::rotate(float alpha)
{
    const float a = alpha * DEG2RAD;
    const float co = static_cast<float>(std::cos(static_cast<double>(a)));
    const float si = static_cast<float>(std::sin(static_cast<double>(a)));
    x = x * co + y * si;
    y = y * co + (-si) * x;
}

float Vec3::MinCompDist(const Vec3& a, const Vec3& b)
{
    return largest(a - b);
}

float Vec3::AngleBetween(const Vec3& a, const Vec3& b)
{
    const float cosine = DotProduct(a, b) / (a.length() * b.length());
    return static_cast<float>(std::acos(static_cast<double>(cosine)));
}
