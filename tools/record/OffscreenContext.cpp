#include <GL/glew.h>

#include "OffscreenContext.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <algorithm>
#include <stdexcept>
#include <string>

namespace record {

namespace {

[[noreturn]] void fail(const std::string& what)
{
    throw std::runtime_error("no OpenGL to draw with: " + what);
}

/// The largest width and height of a framebuffer.
void getLimits(GLint limits[2])
{
    GLint side = 0;
    glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &side);
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, limits);
    limits[0] = std::min(limits[0], side);
    limits[1] = std::min(limits[1], side);
}

/// Adds storage of the framebuffer that is bound.
void attach(GLenum where, GLenum format, int width, int height)
{
    GLuint buffer = 0;
    glGenRenderbuffers(1, &buffer);
    glBindRenderbuffer(GL_RENDERBUFFER, buffer);
    glRenderbufferStorage(GL_RENDERBUFFER, format, width, height);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, where, GL_RENDERBUFFER, buffer);
}

} // namespace

OffscreenContext::OffscreenContext(int width, int height)
{
    try {
        makeContext();
        makeFramebuffer(width, height);
    } catch (...) {
        release();
        throw;
    }
}

OffscreenContext::~OffscreenContext()
{
    release();
}

void OffscreenContext::makeContext()
{
    display = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA,
                                    reinterpret_cast<void*>(EGL_DEFAULT_DISPLAY), nullptr);
    if (display == EGL_NO_DISPLAY || eglInitialize(display, nullptr, nullptr) == EGL_FALSE) {
        display = EGL_NO_DISPLAY;
        fail("EGL finds no driver (Debian's package libegl-mesa0 has one)");
    }
    eglBindAPI(EGL_OPENGL_API);
    const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                             EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (eglChooseConfig(display, wanted, &config, 1, &count) == EGL_FALSE || count == 0) {
        fail("EGL offers OpenGL ES only");
    }
    // Without attributes: the compatibility profile, which has display lists.
    context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
    if (context == EGL_NO_CONTEXT ||
        eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context) == EGL_FALSE) {
        fail("EGL makes no context without a window");
    }
}

void OffscreenContext::makeFramebuffer(int width, int height)
{
    // GLEW asks for a display of the X server after it has loaded everything: its result says
    // nothing here.
    glewInit();
    if (!GLEW_ARB_framebuffer_object || !GLEW_ARB_pixel_buffer_object) {
        fail("this driver has no framebuffer or pixel buffer objects");
    }
    GLint limits[2] = {};
    getLimits(limits);
    if (width > limits[0] || height > limits[1]) {
        throw std::runtime_error("a picture of " + std::to_string(width) + "x" +
                                 std::to_string(height) +
                                 " is too large: this OpenGL draws up to " +
                                 std::to_string(limits[0]) + "x" + std::to_string(limits[1]));
    }
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    attach(GL_COLOR_ATTACHMENT0, GL_RGBA8, width, height);
    attach(GL_DEPTH_ATTACHMENT, GL_DEPTH_COMPONENT24, width, height);
    if (glGetError() != GL_NO_ERROR ||
        glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
        throw std::runtime_error("no memory for a picture of " + std::to_string(width) + "x" +
                                 std::to_string(height));
    }
}

void OffscreenContext::release()
{
    if (display == EGL_NO_DISPLAY) {
        return;
    }
    eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (context != EGL_NO_CONTEXT) {
        eglDestroyContext(display, context);
    }
    // The display is shared by the whole process, and another context may be using it.
}

void OffscreenContext::drawPixels(bool wanted)
{
    glDrawBuffer(wanted ? GL_COLOR_ATTACHMENT0 : GL_NONE);
}

} // namespace record
