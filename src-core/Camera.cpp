#include "Camera.h"

#include <GL/glew.h>
#include <GL/glu.h>
#include <cstdio>
#include <cstdlib>

void Camera::ortho2D(int, int, int w, int h, const float* offset)
{
    view[0] = w;
    view[1] = h;
    glViewport(0, 0, w, h);
    glScissor(0, 0, w, h);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    if (projType == -1) {
        std::puts("Please define camera projection type.");
        std::exit(0);
    }
    setProjection(w, h);
    glTranslatef(-offset[0] * static_cast<float>(w), -offset[1] * static_cast<float>(h), 0);
    setView();
}

void Camera::reshape(int, int, int w, int h)
{
    glViewport(0, 0, w, h);
    glScissor(0, 0, w, h);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    setProjection(w, h);
    setView();
}

void Camera::setProjection(int w, int h)
{
    if (projType != 0) {
        eye[2] = 1;
        const float aspect = static_cast<float>(w) / static_cast<float>(h);
        gluPerspective(60, static_cast<double>(aspect), 0.01, 100);
    } else {
        eye[2] = 0;
        const double right = w;
        const double top = h;
        glOrtho(-right, right, -top, top, -100, 100);
    }
}

void Camera::setView()
{
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    gluLookAt(static_cast<double>(eye[0]), static_cast<double>(eye[1]), static_cast<double>(eye[2]),
              static_cast<double>(center[0]), static_cast<double>(center[1]),
              static_cast<double>(center[2]), static_cast<double>(up[0]),
              static_cast<double>(up[1]), static_cast<double>(up[2]));
}

Point2* Camera::unproject(Point2* out, const Point2* in, const float* model)
{
    GLint viewport[4];
    GLdouble projection[16];
    glGetIntegerv(GL_VIEWPORT, viewport);
    glGetDoublev(GL_PROJECTION_MATRIX, projection);

    GLdouble modelview[16];
    glPushMatrix();
    glMultMatrixf(model);
    glGetDoublev(GL_MODELVIEW_MATRIX, modelview);
    glPopMatrix();

    // GLU subtracts the viewport's origin once more, see Camera.h.
    const double windowX = static_cast<double>(in->x) - viewport[0];
    const double windowY = (viewport[3] - 1) - (static_cast<double>(in->y) - viewport[1]);
    GLdouble x = 0;
    GLdouble y = 0;
    GLdouble z = 0;
    gluUnProject(windowX, windowY, 0, modelview, projection, viewport, &x, &y, &z);
    out->x = static_cast<float>(x);
    out->y = static_cast<float>(y);
    return out;
}
