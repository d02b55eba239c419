#include "FitProjection.h"

#include <GL/glew.h>

void scaleProjection(float factor)
{
    if (factor == 1) {
        return;
    }
    GLint mode = 0;
    GLfloat camera[16];
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    glGetFloatv(GL_PROJECTION_MATRIX, camera);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glScalef(factor, factor, 1);
    glMultMatrixf(camera);
    glMatrixMode(static_cast<GLenum>(mode));
}
