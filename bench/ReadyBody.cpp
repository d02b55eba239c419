#include <GL/glew.h>

#include "ReadyBody.h"

#include "SensorRep.h"

#include <cmath>

namespace bench {
namespace {

constexpr float RADIANS = 0.017453277f; // in a degree

ReadyBody::Segment segment(int frame, int k)
{
    const float a = static_cast<float>(0.2 * k);
    const double g = static_cast<double>(RADIANS * (static_cast<float>(frame) * 1.5f));
    const float sA = static_cast<float>(1 + std::fabs(std::sin(g)));
    const float cA = static_cast<float>(1.5 + std::fabs(std::cos(g)));
    const float kk = 1 / (a * 10 + 1);
    const double da = static_cast<double>(a);
    const double dk = static_cast<double>(kk);
    return {static_cast<float>(0.3 * -da),
            {static_cast<float>(dk * (static_cast<double>(sA) * 0.15000000000000002)),
             static_cast<float>((1 + da * 10) * (static_cast<double>(cA) * 0.03 * dk)),
             static_cast<float>(da * (dk * 0.1))}};
}

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
            frame.segments[static_cast<std::size_t>(k)] = segment(f, k);
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
            glTranslatef(0, s.y, 0);
            glScalef(s.scale[0], s.scale[1], s.scale[2]);
            drawSegment(frame);
            glPopMatrix();
        }
        glPopMatrix();
        glEndList();
    }
    return first;
}

} // namespace bench
