#include "ReferenceMath.h"

namespace reference {

Triple operator+(const Triple& a, const Triple& b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

Triple operator-(const Triple& a, const Triple& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

Triple operator*(const Triple& a, Single factor)
{
    return {a.x * factor, a.y * factor, a.z * factor};
}

Triple operator/(const Triple& a, Single divisor)
{
    return {a.x / divisor, a.y / divisor, a.z / divisor};
}

Single dot(const Triple& a, const Triple& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Triple cross(const Triple& a, const Triple& b)
{
    return {a.y * b.z - b.y * a.z, a.z * b.x - b.z * a.x, a.x * b.y - b.x * a.y};
}

Single length(const Triple& a)
{
    return Single(std::sqrt(dot(a, a).wide()));
}

Triple normalized(const Triple& a)
{
    const Single l = length(a);
    return l == 0.0f ? a : a / l;
}

Single distance(const Triple& a, const Triple& b)
{
    const Triple d = a - b;
    const double xx = d.x.wide() * d.x.wide();
    const double yy = d.y.wide() * d.y.wide();
    const double zz = d.z.wide() * d.z.wide();
    return Single(std::sqrt(xx + yy + zz));
}

Single angleBetween(const Triple& a, const Triple& b)
{
    const Single cosine = dot(a, b) / (length(a) * length(b));
    return Single(std::acos(cosine.wide()));
}

Triple limited(const Triple& a, Single bound)
{
    Single largest = magnitude(a.x) > magnitude(a.y) ? magnitude(a.x) : magnitude(a.y);
    if (!(largest > magnitude(a.z))) {
        largest = magnitude(a.z);
    }
    if (bound >= largest) {
        return a;
    }
    return a * (bound / largest);
}

Mat identity()
{
    return translation(0.0f, 0.0f, 0.0f);
}

Mat product(const Mat& a, const Mat& b)
{
    Mat out;
    for (std::size_t column = 0; column < 4; ++column) {
        for (std::size_t row = 0; row < 4; ++row) {
            Single sum = a[row] * b[4 * column];
            for (std::size_t k = 1; k < 4; ++k) {
                sum = sum + a[4 * k + row] * b[4 * column + k];
            }
            out[4 * column + row] = sum;
        }
    }
    return out;
}

Mat translation(Single x, Single y, Single z)
{
    return {1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f, 0.0f, x, y, z, 1.0f};
}

Mat scaling(Single x, Single y, Single z)
{
    return {x, 0.0f, 0.0f, 0.0f, 0.0f, y, 0.0f, 0.0f, 0.0f, 0.0f, z, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f};
}

Mat rotationAboutZ(Single degrees)
{
    const Single pi = 0x1.921FB6p+1f;
    const Single radians = degrees * pi / 180.0f;
    const Single s(std::sin(radians.wide()));
    const Single c(std::cos(radians.wide()));
    const Single zero = 0.0f;
    return {c,    s,    zero, zero, zero - s, c,    zero, zero,
            zero, zero, 1.0f, zero, zero,     zero, zero, 1.0f};
}

Planes planesOf(const Mat& projection, const Mat& modelview)
{
    const Mat clip = product(projection, modelview);
    Planes planes;
    for (std::size_t i = 0; i < 6; ++i) {
        std::array<Single, 4>& plane = planes[i];
        for (std::size_t column = 0; column < 4; ++column) {
            const Single axis = clip[4 * column + i / 2];
            const Single last = clip[4 * column + 3];
            plane[column] = i % 2 == 0 ? last + axis : last - axis;
        }
        const Single l = length({plane[0], plane[1], plane[2]});
        for (Single& value : plane) {
            value = value / l;
        }
    }
    return planes;
}

namespace {

Single height(const std::array<Single, 4>& plane, const Triple& point)
{
    return plane[0] * point.x + plane[1] * point.y + plane[2] * point.z + plane[3];
}

} // namespace

bool pointIsInside(const Planes& planes, const Triple& point)
{
    for (const std::array<Single, 4>& plane : planes) {
        if (height(plane, point) <= 0.0f) {
            return false;
        }
    }
    return true;
}

bool boxIsInView(const Planes& planes, const Triple& low, const Triple& high)
{
    for (const std::array<Single, 4>& plane : planes) {
        int inside = 0;
        for (int corner = 0; corner < 8; ++corner) {
            const Triple point = {(corner & 1) != 0 ? high.x : low.x,
                                  (corner & 2) != 0 ? high.y : low.y,
                                  (corner & 4) != 0 ? high.z : low.z};
            inside += height(plane, point) > 0.0f ? 1 : 0;
        }
        if (inside == 0) {
            return false;
        }
    }
    return true;
}

} // namespace reference
