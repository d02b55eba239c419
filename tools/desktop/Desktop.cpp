#include "Desktop.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace {

constexpr long FROM_A_PROGRAM = 1; // the source of a request to the window manager

} // namespace

Desktop::Desktop() : connection(XOpenDisplay(nullptr), XCloseDisplay)
{
    if (!connection) {
        throw std::runtime_error(
            "no display: start it in a graphical session, or set DISPLAY to an "
            "X server");
    }
    XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
    rootWindow = DefaultRootWindow(display());
}

std::vector<unsigned long> Desktop::numbers(Window window, const char* property, Atom type) const
{
    constexpr long MANY = 1024;
    Atom found = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long left = 0;
    unsigned char* data = nullptr;
    std::vector<unsigned long> values;
    if (XGetWindowProperty(display(), window, atom(property), 0, MANY, False, type, &found, &format,
                           &count, &left, &data) == Success &&
        found == type && format == 32) {
        values.resize(count);
        std::memcpy(values.data(), data, count * sizeof values[0]);
    }
    if (data != nullptr) {
        XFree(data);
    }
    return values;
}

pid_t Desktop::owner(Window window) const
{
    const auto owner = numbers(window, "_NET_WM_PID", XA_CARDINAL);
    return owner.empty() ? 0 : static_cast<pid_t>(owner[0]);
}

std::string Desktop::title(Window window) const
{
    char* name = nullptr;
    std::string title;
    if (XFetchName(display(), window, &name) != 0 && name != nullptr) {
        title = name;
        XFree(name);
    }
    return title;
}

std::optional<double> Desktop::rate(Window window) const
{
    constexpr std::string_view UNIT = " fps)";
    const std::string text = title(window);
    const std::size_t before = text.rfind(" (");
    if (before == std::string::npos || !text.ends_with(UNIT)) {
        return {};
    }
    const char* const end = text.data() + text.size() - UNIT.size();
    double rate = 0;
    const auto [stop, error] = std::from_chars(text.data() + before + 2, end, rate);
    return error == std::errc() && stop == end ? std::optional(rate) : std::nullopt;
}

bool Desktop::isMain(Window window) const
{
    XWindowAttributes attributes{};
    Window above = None;
    return XGetWindowAttributes(display(), window, &attributes) != 0 &&
           attributes.override_redirect == False && attributes.c_class == InputOutput &&
           XGetTransientForHint(display(), window, &above) == 0;
}

bool Desktop::isMapped(Window window) const
{
    XWindowAttributes attributes{};
    return XGetWindowAttributes(display(), window, &attributes) != 0 &&
           attributes.map_state != IsUnmapped;
}

Window Desktop::manager() const
{
    constexpr const char* MANAGER = "_NET_SUPPORTING_WM_CHECK";
    const auto found = numbers(root(), MANAGER, XA_WINDOW);
    // The hints of a window manager that has ended may still be there. Its window is not.
    return !found.empty() && numbers(found[0], MANAGER, XA_WINDOW) == found ? found[0] : None;
}

std::string Desktop::managersName() const
{
    const Window window = manager();
    XTextProperty name{};
    std::string text;
    if (window != None && XGetTextProperty(display(), window, &name, atom("_NET_WM_NAME")) != 0 &&
        name.value != nullptr) {
        text = reinterpret_cast<const char*>(name.value);
        XFree(name.value);
    }
    return text;
}

bool Desktop::managerKnows(const char* hint) const
{
    if (manager() == None) {
        return false;
    }
    const auto hints = numbers(root(), "_NET_SUPPORTED", XA_ATOM);
    return std::find(hints.begin(), hints.end(), atom(hint)) != hints.end();
}

void Desktop::askManager(Window window, const char* request, std::initializer_list<long> data) const
{
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = atom(request);
    event.xclient.format = 32;
    std::copy(data.begin(), data.end(), event.xclient.data.l);
    XSendEvent(display(), root(), False, SubstructureRedirectMask | SubstructureNotifyMask, &event);
}

void Desktop::setState(Window window, const char* state, bool on) const
{
    askManager(window, "_NET_WM_STATE",
               {on ? 1 : 0, static_cast<long>(atom(state)), 0, FROM_A_PROGRAM});
}

void Desktop::makeFullscreen(Window window) const
{
    constexpr const char* FULLSCREEN = "_NET_WM_STATE_FULLSCREEN";
    if (managerKnows(FULLSCREEN)) {
        setState(window, FULLSCREEN, true);
    } else {
        const int screen = DefaultScreen(display());
        XMoveResizeWindow(display(), window, 0, 0,
                          static_cast<unsigned>(DisplayWidth(display(), screen)),
                          static_cast<unsigned>(DisplayHeight(display(), screen)));
        XRaiseWindow(display(), window);
        // Without a window manager nobody else gives it the keys.
        XSetInputFocus(display(), window, RevertToPointerRoot, CurrentTime);
    }
    XSync(display(), False);
}

void Desktop::turnWheel(Window window, int steps) const
{
    // Each step is an event for the window alone: the real pointer stays where it is, and may be
    // anywhere.
    XEvent event{};
    event.xbutton.display = display();
    event.xbutton.window = window;
    event.xbutton.root = root();
    event.xbutton.same_screen = True;
    event.xbutton.button = steps > 0 ? Button4 : Button5;
    Window child = None;
    unsigned state = 0;
    XQueryPointer(display(), window, &event.xbutton.root, &child, &event.xbutton.x_root,
                  &event.xbutton.y_root, &event.xbutton.x, &event.xbutton.y, &state);
    for (int i = 0; i < std::abs(steps); ++i) {
        for (const int type : {ButtonPress, ButtonRelease}) {
            event.type = type;
            XSendEvent(display(), window, False,
                       type == ButtonPress ? ButtonPressMask : ButtonReleaseMask, &event);
        }
    }
    XSync(display(), False);
}
