#include "Frustum.h"

#include "Column.h"
#include "Matrix.h"

#include <GL/glew.h>
#include <array>
#include <cmath>
#include <cstdio>

using namespace columns;

namespace {

float distance(const float* plane, float x, float y, float z)
{
    return plane[0] * x + plane[1] * y + plane[2] * z + plane[3];
}

/// The plane divided by the length of its normal.
Column normalized(Column plane)
{
    const Column squares = plane * plane;
    const float length =
        static_cast<float>(std::sqrt(static_cast<double>(squares[0] + squares[1] + squares[2])));
    return plane / length;
}

} // namespace

namespace Frustum {

void get_frustum(float planes[6][4])
{
    float projection[16];
    float modelview[16];
    glGetFloatv(GL_PROJECTION_MATRIX, projection);
    glGetFloatv(GL_MODELVIEW_MATRIX, modelview);
    extract_planes(planes, projection, modelview);
}

void extract_planes(float planes[6][4], const float* projection, const float* modelview)
{
    float clip[16];
    Matrix::do_multiply(clip, projection, modelview);
    const std::array<Column, 4> rows =
        transposed({load(clip), load(clip + 4), load(clip + 8), load(clip + 12)});
    for (std::size_t axis = 0; axis < 3; ++axis) {
        store(planes[2 * axis], normalized(rows[3] + rows[axis]));
        store(planes[2 * axis + 1], normalized(rows[3] - rows[axis]));
    }
}

int test_plane(const float* plane, const float* bounds)
{
    int inside = 0;
    for (int corner = 0; corner < 8; ++corner) {
        const float x = bounds[corner & 1 ? 3 : 0];
        const float y = bounds[corner & 2 ? 4 : 1];
        const float z = bounds[corner & 4 ? 5 : 2];
        inside += static_cast<int>(distance(plane, x, y, z) > 0);
    }
    return inside;
}

int test_frustum(const float planes[6][4], const float* bounds)
{
    int inside = 0;
    for (int i = 0; i < 6; ++i) {
        const int corners = test_plane(planes[i], bounds);
        if (corners == 0) {
            return -1;
        }
        inside += corners;
    }
    return inside == 48 ? 1 : 0;
}

int test_point(const float planes[6][4], const float* p)
{
    for (int i = 0; i < 6; ++i) {
        if (distance(planes[i], p[0], p[1], p[2]) <= 0) {
            return -1;
        }
    }
    return 1;
}

void get_view_point(float* out)
{
    float modelview[16];
    glGetFloatv(GL_MODELVIEW_MATRIX, modelview);
    float inverse[16];
    Matrix::do_inverse(inverse, modelview);
    out[0] = inverse[12] / inverse[0];
    out[1] = inverse[13] / inverse[5];
    out[2] = inverse[14] / inverse[10];
    out[3] = inverse[15];
}

void print(const float planes[6][4])
{
    std::printf("\n");
    for (int i = 0; i < 6; ++i) {
        const float* p = planes[i];
        std::printf("%f %f %f %f\n", static_cast<double>(p[0]), static_cast<double>(p[1]),
                    static_cast<double>(p[2]), static_cast<double>(p[3]));
    }
}

} // namespace Frustum
