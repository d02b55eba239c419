#include <GL/glew.h>

#include "ReadyBody.h"

#include "SensorRep.h"

namespace bench {
namespace {

void corner(float s, float t, const float* point)
{
    glTexCoord2f(s, t);
    glVertex3fv(point);
}

void drawSegment(const ReadyBody::Frame& frame)
{
    for (int i = 1; i < ReadyBody::ROWS; ++i) {
        for (int j = 0; j < ReadyBody::COLUMNS - 1; ++j) {
            glBegin(GL_POLYGON);
            corner(0, 0, frame.points[i][j]);
            corner(1, 0, frame.points[i][j + 1]);
            corner(1, 1, frame.points[i - 1][j + 1]);
            corner(0, 1, frame.points[i - 1][j]);
            glEnd();
        }
    }
}

} // namespace

ReadyBody ReadyBody::compute()
{
    ReadyBody body;
    SensorRep rep;
    for (int f = 0; f < FRAMES; ++f) {
        Frame& frame = body.frames.emplace_back();
        for (int k = 0; k < SEGMENTS; ++k) {
            frame.segments[static_cast<std::size_t>(k)] = literal::bodySegment<float>(f, k);
        }
        for (int i = 0; i < ROWS; ++i) {
            for (int j = 0; j < COLUMNS; ++j) {
                const Vec3 p = rep.get_p(i, j);
                const Vec3 q = rep.get_mod_p(p.x, p.y, p.z, f);
                float* point = frame.points[i][j];
                point[0] = q.x;
                point[1] = q.y;
                point[2] = q.z;
            }
        }
    }
    return body;
}

unsigned ReadyBody::compile() const
{
    const GLuint first = glGenLists(FRAMES);
    GLuint list = first;
    for (const Frame& frame : frames) {
        glNewList(list++, GL_COMPILE);
        glPushMatrix();
        for (const Segment& s : frame.segments) {
            glPushMatrix();
            glTranslatef(0, s.shift, 0);
            glScalef(s.scale.x, s.scale.y, s.scale.z);
            drawSegment(frame);
            glPopMatrix();
        }
        glPopMatrix();
        glEndList();
    }
    return first;
}

} // namespace bench
