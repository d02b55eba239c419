#include "BBox.h"

#include <algorithm>
#include <array>
#include <cstdio>

void BBox::set(const float* b)
{
    std::copy_n(b, 6, bounds);
}

void BBox::set(float x0, float y0, float z0, float x1, float y1, float z1)
{
    set(std::array{x0, y0, z0, x1, y1, z1}.data());
}

void BBox::print() const
{
    const std::array<double, 6> b = {bounds[0], bounds[1], bounds[2],
                                     bounds[3], bounds[4], bounds[5]};
    std::printf("x: %f, %f y: %f, %f z: %f %f\n", b[0], b[1], b[2], b[3], b[4], b[5]);
}
