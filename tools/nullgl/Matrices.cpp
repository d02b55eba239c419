// The functions of OpenGL that change matrices.

#include "Calls.h"
#include "Column.h"
#include "Context.h"

#include <cmath>
#include <numbers>

namespace nullgl {
namespace {

constexpr std::size_t MATRICES = 32;

MatrixStack& currentStack()
{
    Context& now = context();
    if (now.attributes.matrixMode == GL_MODELVIEW) { // nearly always: a traversal changes no other
        return now.modelview;
    }
    return now.attributes.matrixMode == GL_PROJECTION ? now.projection : now.texture;
}

void multiplyNow(const Elements& b)
{
    using namespace columns;
    float* const current = currentStack().back().data();
    const Column a[4] = {columns::load(current), columns::load(current + 4),
                         columns::load(current + 8), columns::load(current + 12)};
    for (std::size_t i = 0; i < 16; i += 4) {
        const Column k = columns::load(&b[i]);
        store(current + i, a[0] * pick<0, 0, 0, 0>(k) + a[1] * pick<1, 1, 1, 1>(k) +
                               a[2] * pick<2, 2, 2, 2>(k) + a[3] * pick<3, 3, 3, 3>(k));
    }
}

template<typename Number>
Elements elementsOf(const Number* m)
{
    Elements elements;
    for (std::size_t i = 0; i < 16; ++i) {
        elements[i] = static_cast<GLfloat>(m[i]);
    }
    return elements;
}

void load(const Elements& elements)
{
    perform([elements] { currentStack().back() = elements; });
}

void multiply(const Elements& elements)
{
    perform([elements] { multiplyNow(elements); });
}

/// A translation changes the last column only.
void translate(GLfloat x, GLfloat y, GLfloat z)
{
    perform([=] {
        Elements& m = currentStack().back();
        for (std::size_t row = 0; row < 4; ++row) {
            m[row + 12] = m[row] * x + m[row + 4] * y + m[row + 8] * z + m[row + 12];
        }
    });
}

void scale(GLfloat x, GLfloat y, GLfloat z)
{
    perform([=] {
        Elements& m = currentStack().back();
        for (std::size_t row = 0; row < 4; ++row) {
            m[row] *= x;
            m[row + 4] *= y;
            m[row + 8] *= z;
        }
    });
}

/// The matrix of glRotate, OpenGL 1.1 specification, section 2.9.2.
Elements rotation(double degrees, double x, double y, double z)
{
    const double length = std::sqrt(x * x + y * y + z * z);
    if (length == 0) {
        return IDENTITY;
    }
    x /= length;
    y /= length;
    z /= length;
    const double c = std::cos(degrees * std::numbers::pi / 180);
    const double s = std::sin(degrees * std::numbers::pi / 180);
    const double d = 1 - c;
    const double m[16] = {x * x * d + c,
                          y * x * d + z * s,
                          z * x * d - y * s,
                          0, //
                          x * y * d - z * s,
                          y * y * d + c,
                          z * y * d + x * s,
                          0, //
                          x * z * d + y * s,
                          y * z * d - x * s,
                          z * z * d + c,
                          0, //
                          0,
                          0,
                          0,
                          1};
    return elementsOf(m);
}

} // namespace
} // namespace nullgl

using namespace nullgl;

void GLAPIENTRY glMatrixMode(GLenum mode)
{
    called<"glMatrixMode">();
    perform([mode] { context().attributes.matrixMode = mode; });
}

void GLAPIENTRY glPushMatrix()
{
    called<"glPushMatrix">();
    perform([] {
        MatrixStack& stack = currentStack();
        if (stack.size() == MATRICES) {
            context().raise(GL_STACK_OVERFLOW);
        } else {
            stack.push_back(stack.back());
        }
    });
}

void GLAPIENTRY glPopMatrix()
{
    called<"glPopMatrix">();
    perform([] {
        MatrixStack& stack = currentStack();
        if (stack.size() == 1) {
            context().raise(GL_STACK_UNDERFLOW);
        } else {
            stack.pop_back();
        }
    });
}

void GLAPIENTRY glLoadIdentity()
{
    called<"glLoadIdentity">();
    load(IDENTITY);
}

void GLAPIENTRY glLoadMatrixf(const GLfloat* m)
{
    called<"glLoadMatrixf">();
    load(elementsOf(m));
}

void GLAPIENTRY glLoadMatrixd(const GLdouble* m)
{
    called<"glLoadMatrixd">();
    load(elementsOf(m));
}

void GLAPIENTRY glMultMatrixf(const GLfloat* m)
{
    called<"glMultMatrixf">();
    multiply(elementsOf(m));
}

void GLAPIENTRY glMultMatrixd(const GLdouble* m)
{
    called<"glMultMatrixd">();
    multiply(elementsOf(m));
}

void GLAPIENTRY glTranslatef(GLfloat x, GLfloat y, GLfloat z)
{
    called<"glTranslatef">();
    translate(x, y, z);
}

void GLAPIENTRY glTranslated(GLdouble x, GLdouble y, GLdouble z)
{
    called<"glTranslated">();
    translate(static_cast<GLfloat>(x), static_cast<GLfloat>(y), static_cast<GLfloat>(z));
}

void GLAPIENTRY glScalef(GLfloat x, GLfloat y, GLfloat z)
{
    called<"glScalef">();
    scale(x, y, z);
}

void GLAPIENTRY glScaled(GLdouble x, GLdouble y, GLdouble z)
{
    called<"glScaled">();
    scale(static_cast<GLfloat>(x), static_cast<GLfloat>(y), static_cast<GLfloat>(z));
}

void GLAPIENTRY glRotatef(GLfloat angle, GLfloat x, GLfloat y, GLfloat z)
{
    called<"glRotatef">();
    multiply(rotation(static_cast<double>(angle), static_cast<double>(x), static_cast<double>(y),
                      static_cast<double>(z)));
}

void GLAPIENTRY glRotated(GLdouble angle, GLdouble x, GLdouble y, GLdouble z)
{
    called<"glRotated">();
    multiply(rotation(angle, x, y, z));
}

/// OpenGL 1.1 specification, section 2.9.2.
void GLAPIENTRY glOrtho(GLdouble l, GLdouble r, GLdouble b, GLdouble t, GLdouble n, GLdouble f)
{
    called<"glOrtho">();
    const GLdouble m[16] = {2 / (r - l),
                            0,
                            0,
                            0,
                            0,
                            2 / (t - b),
                            0,
                            0,
                            0,
                            0,
                            -2 / (f - n),
                            0,
                            -(r + l) / (r - l),
                            -(t + b) / (t - b),
                            -(f + n) / (f - n),
                            1};
    multiply(elementsOf(m));
}

/// OpenGL 1.1 specification, section 2.9.2.
void GLAPIENTRY glFrustum(GLdouble l, GLdouble r, GLdouble b, GLdouble t, GLdouble n, GLdouble f)
{
    called<"glFrustum">();
    const GLdouble m[16] = {2 * n / (r - l),
                            0,
                            0,
                            0,
                            0,
                            2 * n / (t - b),
                            0,
                            0,
                            (r + l) / (r - l),
                            (t + b) / (t - b),
                            -(f + n) / (f - n),
                            -1,
                            0,
                            0,
                            -2 * f * n / (f - n),
                            0};
    multiply(elementsOf(m));
}
