#include "Matrix.h"

#include "Column.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>

using namespace columns;

namespace {

using Bits = std::uint32_t __attribute__((vector_size(16)));
constexpr std::uint32_t SIGN = 0x80000000;

/// Negates the elements for which \p signs has the sign bit set.
Column negate(Column column, Bits signs)
{
    return std::bit_cast<Column>(std::bit_cast<Bits>(column) ^ signs);
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
    const auto column = [&](const float* elements) {
        const Column k = load(elements);
        return a0 * pick<0, 0, 0, 0>(k) + a1 * pick<1, 1, 1, 1>(k) + a2 * pick<2, 2, 2, 2>(k) +
               a3 * pick<3, 3, 3, 3>(k);
    };
    // All four are computed before the first is stored, because out may be a or b.
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
    const Column m0 = load(m);
    const Column m1 = load(m + 4);
    const Column m2 = load(m + 8);
    const Column m3 = load(m + 12);

    // The 2x2 minors of columns p and q, one for each column of the inverse: of rows 2 and 3 for
    // columns 0 and 1, of rows 1 and 3 for column 2, of rows 1 and 2 for column 3.
    const auto minors = [](Column p, Column q) {
        return pick<2, 2, 1, 1>(p) * pick<3, 3, 3, 2>(q) -
               pick<2, 2, 1, 1>(q) * pick<3, 3, 3, 2>(p);
    };
    const Column s01 = minors(m0, m1);
    const Column s02 = minors(m0, m2);
    const Column s03 = minors(m0, m3);
    const Column s12 = minors(m1, m2);
    const Column s13 = minors(m1, m3);
    const Column s23 = minors(m2, m3);

    // The elements of the row that extends each of these to a 3x3 minor.
    const Column e0 = pick<1, 0, 0, 0>(m0);
    const Column e1 = pick<1, 0, 0, 0>(m1);
    const Column e2 = pick<1, 0, 0, 0>(m2);
    const Column e3 = pick<1, 0, 0, 0>(m3);

    // The cofactors, with alternating signs, as the rows of the inverse times the determinant. The
    // first element of each row is a cofactor of the first row of m, which gives the determinant.
    constexpr Bits ODD = {0, SIGN, 0, SIGN};
    constexpr Bits EVEN = {SIGN, 0, SIGN, 0};
    const Column r0 = negate(e1 * s23 - e2 * s13 + e3 * s12, ODD);
    const Column r1 = negate(e0 * s23 - e2 * s03 + e3 * s02, EVEN);
    const Column r2 = negate(e0 * s13 - e1 * s03 + e3 * s01, ODD);
    const Column r3 = negate(e0 * s12 - e1 * s02 + e2 * s01, EVEN);
    const float det = m0[0] * r0[0] + m1[0] * r1[0] + m2[0] * r2[0] + m3[0] * r3[0];
    const std::array<Column, 4> inverse = transposed({r0 / det, r1 / det, r2 / det, r3 / det});
    store(out, inverse[0]);
    store(out + 4, inverse[1]);
    store(out + 8, inverse[2]);
    store(out + 12, inverse[3]);
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
