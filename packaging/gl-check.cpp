// kelpix-gl-check: status 1 when OpenGL on the display is a software renderer, whose name it
// prints; else 0, also where it cannot tell.

#include <GL/glx.h>
#include <X11/Xlib.h>
#include <cstdio>
#include <string>

namespace {

// Of the extension GLX_MESA_query_renderer, which the software renderers have.
using QueryInteger = Bool (*)(Display*, int screen, int renderer, int attribute, unsigned* value);
using QueryString = const char* (*)(Display*, int screen, int renderer, int attribute);

template<typename Function>
Function find(const char* name)
{
    return reinterpret_cast<Function>(glXGetProcAddressARB(reinterpret_cast<const GLubyte*>(name)));
}

/// \return the name of the software renderer, empty when there is none
std::string softwareRenderer(Display* display)
{
    const int screen = DefaultScreen(display);
    if (!glXQueryExtension(display, nullptr, nullptr)) {
        return "";
    }
    const char* const extensions = glXQueryExtensionsString(display, screen);
    if (extensions == nullptr ||
        std::string(extensions).find("GLX_MESA_query_renderer") == std::string::npos) {
        return "";
    }
    const auto queryInteger = find<QueryInteger>("glXQueryRendererIntegerMESA");
    const auto queryString = find<QueryString>("glXQueryRendererStringMESA");
    unsigned isAccelerated = 1;
    if (queryInteger == nullptr || queryString == nullptr ||
        !queryInteger(display, screen, 0, GLX_RENDERER_ACCELERATED_MESA, &isAccelerated) ||
        isAccelerated) {
        return "";
    }
    const char* const device = queryString(display, screen, 0, GLX_RENDERER_DEVICE_ID_MESA);
    const std::string name = device != nullptr ? device : "";
    // "llvmpipe (LLVM 15.0.6, 256 bits)"
    return name.empty() ? "software" : name.substr(0, name.find(' '));
}

} // namespace

int main()
{
    Display* const display = XOpenDisplay(nullptr);
    if (display == nullptr) {
        return 0;
    }
    const std::string name = softwareRenderer(display);
    XCloseDisplay(display);
    if (name.empty()) {
        return 0;
    }
    std::puts(name.c_str());
    return 1;
}
