#include <GL/glew.h>

#include "Context.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <cstdio>
#include <cstdlib>

namespace bench {

std::function<void()> makeContext()
{
    const auto getDisplay = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(
        eglGetProcAddress("eglGetPlatformDisplayEXT"));
    EGLDisplay display = getDisplay != nullptr ? getDisplay(EGL_PLATFORM_SURFACELESS_MESA,
                                                            EGL_DEFAULT_DISPLAY, nullptr)
                                               : EGL_NO_DISPLAY;
    eglInitialize(display, nullptr, nullptr);
    eglBindAPI(EGL_OPENGL_API);
    constexpr EGLint WANTED[] = {EGL_SURFACE_TYPE,
                                 EGL_PBUFFER_BIT,
                                 EGL_RENDERABLE_TYPE,
                                 EGL_OPENGL_BIT,
                                 EGL_RED_SIZE,
                                 8,
                                 EGL_GREEN_SIZE,
                                 8,
                                 EGL_BLUE_SIZE,
                                 8,
                                 EGL_ALPHA_SIZE,
                                 8,
                                 EGL_DEPTH_SIZE,
                                 24,
                                 EGL_NONE};
    constexpr EGLint SIZE[] = {EGL_WIDTH, 740, EGL_HEIGHT, 740, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    eglChooseConfig(display, WANTED, &config, 1, &count);
    EGLSurface surface = eglCreatePbufferSurface(display, config, SIZE);
    EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
    const auto makeCurrent = [=] {
        if (!eglMakeCurrent(display, surface, surface, context)) {
            std::printf("no GL context without a display\n");
            std::exit(1);
        }
    };
    makeCurrent();
    glewInit(); // complains of the missing display, after it has loaded everything else
    return makeCurrent;
}

} // namespace bench
