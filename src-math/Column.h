#pragma once

#include <array>
#include <cstring>

/// Arithmetic on the columns of 4x4 matrices. Private to kelpix::math and kelpix::core.
namespace columns {

/// One column (or row) of a 4x4 matrix. An operation acts on each of the four elements and rounds
/// like the same operation on a float. This is the vector type of g++ and clang: a SIMD register
/// where the processor has one, else four numbers.
using Column = float __attribute__((vector_size(16)));

/// Reads 4 floats.
inline Column load(const float* elements)
{
    Column column;
    std::memcpy(&column, elements, sizeof column);
    return column;
}

/// Writes 4 floats.
inline void store(float* elements, Column column)
{
    std::memcpy(elements, &column, sizeof column);
}

/// Elements \p a, \p b, \p c and \p d of a column.
template<int a, int b, int c, int d>
Column pick(Column column)
{
    return __builtin_shufflevector(column, column, a, b, c, d);
}

/// Transposes a matrix: four columns become four rows, or the reverse.
inline std::array<Column, 4> transposed(const std::array<Column, 4>& m)
{
    const Column low01 = __builtin_shufflevector(m[0], m[1], 0, 4, 1, 5);
    const Column high01 = __builtin_shufflevector(m[0], m[1], 2, 6, 3, 7);
    const Column low23 = __builtin_shufflevector(m[2], m[3], 0, 4, 1, 5);
    const Column high23 = __builtin_shufflevector(m[2], m[3], 2, 6, 3, 7);
    return {__builtin_shufflevector(low01, low23, 0, 1, 4, 5),
            __builtin_shufflevector(low01, low23, 2, 3, 6, 7),
            __builtin_shufflevector(high01, high23, 0, 1, 4, 5),
            __builtin_shufflevector(high01, high23, 2, 3, 6, 7)};
}

} // namespace columns
