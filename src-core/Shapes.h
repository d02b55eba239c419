#pragma once

#include "GLTypes.h"

/// A shape that was compiled into a display list.
struct Geometry {
    GLuint list;      ///< display-list name, made by the generator
    const char* name; ///< borrows a literal that names the shape
};

/// Generators of simple shapes.
///
/// Each compiles its shape into a new display list and stores the list and the shape's name in the
/// caller's Geometry. The caller owns the list and draws it with glCallList. Shapes are in the
/// frame and units of the node that draws them.
///
/// All need a current GL context with no display list open.
///
/// \par Example
/// \snippet creature.cpp shape
namespace Shapes {

/// A textured square from (0, 0) to (scale, scale) in the plane z = 0, not centered, one polygon,
/// counter-clockwise, with texture coordinates from 0 to 1. Name "plane".
void plane(Geometry* g, float scale);

/// An arrow of three lines in the plane z = 0 that points along y: a shaft of length \p scale
/// centered at the origin and two barbs at its upper end. Name "arrow".
void arrow(Geometry* g, float scale);

/// A textured sphere about the origin: n/2 quad strips from the south pole to the north pole (the
/// poles lie on the y axis), each of 2 * (n + 1) vertices with normals. Name "sphere".
/// \param r  radius; its sign does not count
/// \param n  quads around the equator; its sign does not count; the cost grows with its square
///
/// Fixed behavior: a sphere of fewer than 4 quads or of radius 0 is one point, and its display list
/// stays open: the caller has to close it. Pinned by
/// ShapesTest.ADegenerateSphereIsOnePointAndLeavesItsListOpen; do not correct.
void sphere(Geometry* g, float r, int n);

/// Not defined: does nothing and leaves \p g untouched.
void triangle(Geometry* g, float scale);

/// Not defined: does nothing and leaves \p g untouched.
void circle(Geometry* g, float scale);

/// Not defined: does nothing and leaves \p g untouched.
void cube(Geometry* g, float scale);

} // namespace Shapes
