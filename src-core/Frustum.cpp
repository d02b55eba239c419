#include "Frustum.h"

#include "Matrix.h"

#include <GL/glew.h>
#include <cmath>
#include <cstdio>

namespace {

float distance(const float* plane, float x, float y, float z)
{
    return plane[0] * x + plane[1] * y + plane[2] * z + plane[3];
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
    for (int axis = 0; axis < 3; ++axis) {
        float* lower = planes[2 * axis];
        float* upper = planes[2 * axis + 1];
        for (int column = 0; column < 4; ++column) {
            const float w = clip[4 * column + 3];
            lower[column] = w + clip[4 * column + axis];
            upper[column] = w - clip[4 * column + axis];
        }
    }
    for (int i = 0; i < 6; ++i) {
        float* p = planes[i];
        const float squares = p[0] * p[0] + p[1] * p[1] + p[2] * p[2];
        const float length = static_cast<float>(std::sqrt(static_cast<double>(squares)));
        for (int k = 0; k < 4; ++k) {
            p[k] /= length;
        }
    }
}

int test_plane(const float* plane, const float* bounds)
{
    int inside = 0;
    for (int corner = 0; corner < 8; ++corner) {
        const float x = bounds[corner & 1 ? 3 : 0];
        const float y = bounds[corner & 2 ? 4 : 1];
        const float z = bounds[corner & 4 ? 5 : 2];
        inside += distance(plane, x, y, z) > 0;
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
