#pragma once

/// Functions over 4x4 matrices.
///
/// A matrix is an array of 16 floats in column-major order, as glMultMatrixf takes it and
/// glGetFloatv(GL_MODELVIEW_MATRIX) gives it: the element of row i and column j has index 4*j + i,
/// and a translation lies in elements 12, 13 and 14. A matrix multiplies column vectors from the
/// left. Angles are in degrees.
///
/// The caller owns every array. A function that writes a matrix writes all 16 elements. Nothing
/// here allocates, fails or needs a GL context; bad numbers give infinities or NaN.
///
/// \par Example
/// \snippet hello-node.cpp matrix
namespace Matrix {

/// Writes the identity.
void load_identity(float* m);

/// Writes the translation by (x, y, z).
void location(float* m, float x, float y, float z);

/// Writes the scaling by x, y and z along the three axes.
void scale(float* m, float x, float y, float z);

/// Writes the rotation by \p angle degrees about the axis (x, y, z): the matrix that
/// glRotatef(angle, x, y, z) multiplies in. The axis need not have unit length; a zero axis gives
/// a matrix of NaN in the upper-left 3x3 block.
void rotation(float* m, float x, float y, float z, float angle);

/// out = a * b: applied to a vector, b acts first. \p out may be the same array as \p a or \p b.
void do_multiply(float* out, const float* a, const float* b);

/// out = inverse of m, by the adjugate over the determinant (cofactor expansion along the first
/// row). \p out may be the same array as \p m. A singular matrix gives infinities or NaN.
void do_inverse(float* out, const float* m);

/// Copies the 16 elements of \p src to \p dst.
/// Fixed behavior: Matrix::dump_matrix prints nothing, despite its name. Pinned by
/// MatrixTest.DumpCopiesAndPrintsNothing; do not correct.
void dump_matrix(float* dst, const float* src);

/// Prints the matrix to standard output, one row per line, each element as "%f ".
void print(const float* m);

} // namespace Matrix
