#pragma once

#include <GL/gl.h>
#include <vector>

/// The few functions of OpenGL that an outline calls, in place of the system's: they keep the
/// vertices and do nothing else.

struct Point {
    float x, y;
};

/// What glVertex2f was called with.
extern std::vector<Point> vertices;
