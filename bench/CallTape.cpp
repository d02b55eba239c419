#include <GL/glew.h>

#include "CallTape.h"

#include <vector>

namespace {

std::vector<std::function<void()>> tape;
bool isRecording = false;

template<typename Call>
void make(Call call)
{
    if (isRecording) {
        tape.emplace_back(call);
    }
    call();
}

} // namespace

// The functions that the scene draws with.
extern "C" {

decltype(glBegin) __real_glBegin, __wrap_glBegin;
decltype(glBindTexture) __real_glBindTexture, __wrap_glBindTexture;
decltype(glBlendFunc) __real_glBlendFunc, __wrap_glBlendFunc;
decltype(glCallList) __real_glCallList, __wrap_glCallList;
decltype(glClear) __real_glClear, __wrap_glClear;
decltype(glColor3f) __real_glColor3f, __wrap_glColor3f;
decltype(glColor4f) __real_glColor4f, __wrap_glColor4f;
decltype(glDisable) __real_glDisable, __wrap_glDisable;
decltype(glDisableClientState) __real_glDisableClientState, __wrap_glDisableClientState;
decltype(glEnable) __real_glEnable, __wrap_glEnable;
decltype(glEnd) __real_glEnd, __wrap_glEnd;
decltype(glFlush) __real_glFlush, __wrap_glFlush;
decltype(glGetFloatv) __real_glGetFloatv, __wrap_glGetFloatv;
decltype(glLineWidth) __real_glLineWidth, __wrap_glLineWidth;
decltype(glMatrixMode) __real_glMatrixMode, __wrap_glMatrixMode;
decltype(glMultMatrixf) __real_glMultMatrixf, __wrap_glMultMatrixf;
decltype(glPopMatrix) __real_glPopMatrix, __wrap_glPopMatrix;
decltype(glPushMatrix) __real_glPushMatrix, __wrap_glPushMatrix;
decltype(glScalef) __real_glScalef, __wrap_glScalef;
decltype(glVertex2f) __real_glVertex2f, __wrap_glVertex2f;

void __wrap_glBegin(GLenum mode)
{
    make([=] { __real_glBegin(mode); });
}

void __wrap_glBindTexture(GLenum target, GLuint texture)
{
    make([=] { __real_glBindTexture(target, texture); });
}

void __wrap_glBlendFunc(GLenum source, GLenum destination)
{
    make([=] { __real_glBlendFunc(source, destination); });
}

void __wrap_glCallList(GLuint list)
{
    make([=] { __real_glCallList(list); });
}

void __wrap_glClear(GLbitfield mask)
{
    make([=] { __real_glClear(mask); });
}

void __wrap_glColor3f(GLfloat r, GLfloat g, GLfloat b)
{
    make([=] { __real_glColor3f(r, g, b); });
}

void __wrap_glColor4f(GLfloat r, GLfloat g, GLfloat b, GLfloat a)
{
    make([=] { __real_glColor4f(r, g, b, a); });
}

void __wrap_glDisable(GLenum capability)
{
    make([=] { __real_glDisable(capability); });
}

void __wrap_glDisableClientState(GLenum array)
{
    make([=] { __real_glDisableClientState(array); });
}

void __wrap_glEnable(GLenum capability)
{
    make([=] { __real_glEnable(capability); });
}

void __wrap_glEnd()
{
    make([] { __real_glEnd(); });
}

void __wrap_glFlush()
{
    make([] { __real_glFlush(); });
}

void __wrap_glGetFloatv(GLenum name, GLfloat* values)
{
    if (isRecording) {
        tape.emplace_back([=] {
            GLfloat dropped[16];
            __real_glGetFloatv(name, dropped);
        });
    }
    __real_glGetFloatv(name, values);
}

void __wrap_glLineWidth(GLfloat width)
{
    make([=] { __real_glLineWidth(width); });
}

void __wrap_glMatrixMode(GLenum mode)
{
    make([=] { __real_glMatrixMode(mode); });
}

void __wrap_glMultMatrixf(const GLfloat* matrix)
{
    make([=] { __real_glMultMatrixf(matrix); });
}

void __wrap_glPopMatrix()
{
    make([] { __real_glPopMatrix(); });
}

void __wrap_glPushMatrix()
{
    make([] { __real_glPushMatrix(); });
}

void __wrap_glScalef(GLfloat x, GLfloat y, GLfloat z)
{
    make([=] { __real_glScalef(x, y, z); });
}

void __wrap_glVertex2f(GLfloat x, GLfloat y)
{
    make([=] { __real_glVertex2f(x, y); });
}

} // extern "C"

void CallTape::record(const std::function<void()>& draw)
{
    tape.clear();
    isRecording = true;
    draw();
    isRecording = false;
}

void CallTape::play()
{
    for (const auto& call : tape) {
        call();
    }
}
