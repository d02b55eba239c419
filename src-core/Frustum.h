#pragma once

/// The view volume in the frame of the current modelview matrix, and tests against it.
///
/// A plane is 4 floats (a, b, c, d); a point (x, y, z) is on its inner side when
/// a*x + b*y + c*z + d > 0. A frustum is six planes in the order left, right, bottom, top, near,
/// far. Called from a node's cull, get_frustum gives the planes in the node's own frame, because
/// the draw traversal has multiplied the node's transform into the modelview matrix. The node then
/// tests its own coordinates without transforming them.
///
/// \par Example
/// \snippet hello-node.cpp cull
namespace Frustum {

/// Extracts the six planes from the current projection and modelview matrices and normalizes them
/// (Gribb and Hartmann, "Fast Extraction of Viewing Frustum Planes", 2001).
/// Needs: current GL context; reads its two matrices. A degenerate matrix divides by zero.
void get_frustum(float planes[6][4]);

/// The part of get_frustum that needs no GL context.
/// \param projection  float[16], column-major
/// \param modelview   float[16], column-major
void extract_planes(float planes[6][4], const float* projection, const float* modelview);

/// Counts the corners of a box on the inner side of one plane.
/// \param plane   float[4]
/// \param bounds  float[6]: x0 y0 z0 x1 y1 z1, same frame as the plane
/// \return 0..8; a corner exactly on the plane does not count
int test_plane(const float* plane, const float* bounds);

/// \param bounds  float[6], same frame as the planes
/// \return -1 when all corners are outside one of the planes, 1 when all are inside all planes,
///         else 0. A corner on a plane counts as outside.
int test_frustum(const float planes[6][4], const float* bounds);

/// \param p  float[3], same frame as the planes
/// \return 1 when the point is strictly inside all planes, else -1
int test_point(const float planes[6][4], const float* p);

/// Writes the viewer's position in the frame of the current modelview matrix.
/// \param out  float[4]: elements 12 to 15 of the inverse modelview matrix, the first three each
///             divided by the diagonal element of its row
/// Needs: current GL context; reads its modelview matrix.
///
/// Fixed behavior: Frustum::get_view_point gives a position s times as large under a scaling by s,
/// because of the division. Pinned by
/// FrustumTest.TheViewPointUnderAScalingIsTheInverseTranslationTimesTheScale; do not correct.
void get_view_point(float* out);

/// Prints an empty line, then each plane as "%f %f %f %f\n".
void print(const float planes[6][4]);

} // namespace Frustum
