#include "ReferencePlanes.h"

namespace reference {

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
        const Single l = literal::length<Single>({plane[0], plane[1], plane[2]});
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
