#include "Matrix.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

/// One column of a matrix; each operation acts on its four elements. A vector type of the compilers
/// that becomes a register where the processor has one, and four numbers elsewhere.
using Column = float __attribute__((vector_size(16)));

Column load(const float* elements)
{
    Column column;
    std::memcpy(&column, elements, sizeof column);
    return column;
}

void store(float* elements, Column column)
{
    std::memcpy(elements, &column, sizeof column);
}

} // namespace

namespace Matrix {

void load_identity(float* m)
{
    scale(m, 1, 1, 1);
}

void location(float* m, float x, float y, float z)
{
    load_identity(m);
    m[12] = x;
    m[13] = y;
    m[14] = z;
}

void scale(float* m, float x, float y, float z)
{
    std::fill_n(m, 16, 0.0f);
    m[0] = x;
    m[5] = y;
    m[10] = z;
    m[15] = 1;
}

void rotation(float* m, float x, float y, float z, float angle)
{
    const float length = static_cast<float>(std::sqrt(static_cast<double>(x * x + y * y + z * z)));
    const float radians = angle * 3.1415927f / 180.0f;
    const float s = static_cast<float>(std::sin(static_cast<double>(radians)));
    const float c = static_cast<float>(std::cos(static_cast<double>(radians)));
    const float ux = x / length;
    const float uy = y / length;
    const float uz = z / length;

    load_identity(m);
    m[0] = ux * ux + (1 - ux * ux) * c;
    m[1] = ux * uy * (1 - c) + uz * s;
    m[2] = ux * uz * (1 - c) - uy * s;
    m[4] = uy * ux * (1 - c) - uz * s;
    m[5] = uy * uy + (1 - uy * uy) * c;
    m[6] = uy * uz * (1 - c) + ux * s;
    m[8] = uz * ux * (1 - c) + uy * s;
    m[9] = uz * uy * (1 - c) - ux * s;
    m[10] = uz * uz + (1 - uz * uz) * c;
}

void do_multiply(float* out, const float* a, const float* b)
{
    const Column a0 = load(a);
    const Column a1 = load(a + 4);
    const Column a2 = load(a + 8);
    const Column a3 = load(a + 12);
    const auto column = [&](const float* k) {
        return a0 * k[0] + a1 * k[1] + a2 * k[2] + a3 * k[3];
    };
    // All four before the first is stored: out may be a or b.
    const Column c0 = column(b);
    const Column c1 = column(b + 4);
    const Column c2 = column(b + 8);
    const Column c3 = column(b + 12);
    store(out, c0);
    store(out + 4, c1);
    store(out + 8, c2);
    store(out + 12, c3);
}

void do_inverse(float* out, const float* m)
{
    float e[16];
    dump_matrix(e, m);

    // 2x2 minors of rows 2 and 3; the digits name the two columns.
    const float s01 = e[2] * e[7] - e[6] * e[3];
    const float s02 = e[2] * e[11] - e[10] * e[3];
    const float s03 = e[2] * e[15] - e[14] * e[3];
    const float s12 = e[6] * e[11] - e[10] * e[7];
    const float s13 = e[6] * e[15] - e[14] * e[7];
    const float s23 = e[10] * e[15] - e[14] * e[11];

    // 2x2 minors of rows 1 and 3, and of rows 1 and 2.
    const float t01 = e[1] * e[7] - e[5] * e[3];
    const float t02 = e[1] * e[11] - e[9] * e[3];
    const float t03 = e[1] * e[15] - e[13] * e[3];
    const float t12 = e[5] * e[11] - e[9] * e[7];
    const float t13 = e[5] * e[15] - e[13] * e[7];
    const float t23 = e[9] * e[15] - e[13] * e[11];
    const float u01 = e[1] * e[6] - e[5] * e[2];
    const float u02 = e[1] * e[10] - e[9] * e[2];
    const float u03 = e[1] * e[14] - e[13] * e[2];
    const float u12 = e[5] * e[10] - e[9] * e[6];
    const float u13 = e[5] * e[14] - e[13] * e[6];
    const float u23 = e[9] * e[14] - e[13] * e[10];

    // Cofactors of the first row: they make the determinant and the first column of the inverse.
    const float c0 = e[5] * s23 - e[9] * s13 + e[13] * s12;
    const float c1 = -(e[1] * s23 - e[9] * s03 + e[13] * s02);
    const float c2 = e[1] * s13 - e[5] * s03 + e[13] * s01;
    const float c3 = -(e[1] * s12 - e[5] * s02 + e[9] * s01);
    const float det = e[0] * c0 + e[4] * c1 + e[8] * c2 + e[12] * c3;

    out[0] = c0 / det;
    out[1] = c1 / det;
    out[2] = c2 / det;
    out[3] = c3 / det;
    out[4] = -(e[4] * s23 - e[8] * s13 + e[12] * s12) / det;
    out[5] = (e[0] * s23 - e[8] * s03 + e[12] * s02) / det;
    out[6] = -(e[0] * s13 - e[4] * s03 + e[12] * s01) / det;
    out[7] = (e[0] * s12 - e[4] * s02 + e[8] * s01) / det;
    out[8] = (e[4] * t23 - e[8] * t13 + e[12] * t12) / det;
    out[9] = -(e[0] * t23 - e[8] * t03 + e[12] * t02) / det;
    out[10] = (e[0] * t13 - e[4] * t03 + e[12] * t01) / det;
    out[11] = -(e[0] * t12 - e[4] * t02 + e[8] * t01) / det;
    out[12] = -(e[4] * u23 - e[8] * u13 + e[12] * u12) / det;
    out[13] = (e[0] * u23 - e[8] * u03 + e[12] * u02) / det;
    out[14] = -(e[0] * u13 - e[4] * u03 + e[12] * u01) / det;
    out[15] = (e[0] * u12 - e[4] * u02 + e[8] * u01) / det;
}

void dump_matrix(float* dst, const float* src)
{
    std::copy_n(src, 16, dst);
}

void print(const float* m)
{
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            std::printf("%f ", static_cast<double>(m[4 * j + i]));
        }
        std::printf("\n");
    }
}

} // namespace Matrix
