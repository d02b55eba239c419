#include "VertexGL.h"

std::vector<Point> vertices;

extern "C" {

void glBegin(GLenum)
{
}

void glEnd()
{
}

void glEnable(GLenum)
{
}

void glDisable(GLenum)
{
}

void glBlendFunc(GLenum, GLenum)
{
}

void glColor4f(GLfloat, GLfloat, GLfloat, GLfloat)
{
}

void glVertex2f(GLfloat x, GLfloat y)
{
    vertices.push_back({x, y});
}

} // extern "C"
