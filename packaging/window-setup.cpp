// kelpix-window-setup: does with the window of a program that has just been started what a person
// would do: gives it the whole screen, turns the mouse wheel over it.

#include "CommandLine.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int MOST_ZOOM = 20;

struct Options {
    pid_t pid = 0;
    bool fullscreen = false;
    int zoom = 0;
};

std::vector<commandline::Option> tableOf(Options& options)
{
    return {
        {"--pid", "N", "the program's process, which may not have a window yet",
         commandline::number(options.pid, 1, std::numeric_limits<pid_t>::max())},
        {"--fullscreen", "", "gives the window the whole screen",
         commandline::flag(options.fullscreen)},
        {"--zoom", "N", "turns the wheel N steps over it, -20 to 20; above 0 zooms in",
         commandline::number(options.zoom, -MOST_ZOOM, MOST_ZOOM)},
    };
}

std::string usage()
{
    Options unused;
    return "usage: kelpix-window-setup --pid N [option ...]\n"
           "\n"
           "Waits until the program shows the scene in a window, sets that window up, and\n"
           "ends; at the latest when the program ends.\n"
           "\n" +
           commandline::describe(tableOf(unused));
}

/// The X server that DISPLAY names.
class Desktop {
public:
    Desktop() : display(XOpenDisplay(nullptr), XCloseDisplay)
    {
        if (!display) {
            throw std::runtime_error("the display cannot be opened");
        }
        // A window may go at any time; what is asked of it then fails, and that is all.
        XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
        root = DefaultRootWindow(display.get());
    }

    /// \return the window in which process \p pid shows the scene, None before its first frame
    Window sceneOf(pid_t pid) { return sceneBelow(root, static_cast<std::size_t>(pid)); }

    void makeFullscreen(Window window)
    {
        if (managerKnows("_NET_WM_STATE_FULLSCREEN")) {
            askManagerForFullscreen(window);
        } else {
            const int screen = DefaultScreen(display.get());
            XMoveResizeWindow(display.get(), window, 0, 0,
                              static_cast<unsigned>(DisplayWidth(display.get(), screen)),
                              static_cast<unsigned>(DisplayHeight(display.get(), screen)));
            XRaiseWindow(display.get(), window);
            // Without a window manager nobody else gives it the keys.
            XSetInputFocus(display.get(), window, RevertToPointerRoot, CurrentTime);
        }
        XSync(display.get(), False);
    }

    /// Turns the wheel \p steps times, up where they are above 0. Each step is an event for the
    /// window alone: the real pointer stays where it is, and may be anywhere.
    void turnWheel(Window window, int steps)
    {
        XEvent event{};
        event.xbutton.display = display.get();
        event.xbutton.window = window;
        event.xbutton.root = root;
        event.xbutton.same_screen = True;
        event.xbutton.button = steps > 0 ? Button4 : Button5;
        Window child = None;
        unsigned state = 0;
        XQueryPointer(display.get(), window, &event.xbutton.root, &child, &event.xbutton.x_root,
                      &event.xbutton.y_root, &event.xbutton.x, &event.xbutton.y, &state);
        for (int i = 0; i < std::abs(steps); ++i) {
            for (const int type : {ButtonPress, ButtonRelease}) {
                event.type = type;
                XSendEvent(display.get(), window, False,
                           type == ButtonPress ? ButtonPressMask : ButtonReleaseMask, &event);
            }
        }
        XSync(display.get(), False);
    }

private:
    std::unique_ptr<Display, int (*)(Display*)> display;
    Window root;

    Atom atom(const char* name) { return XInternAtom(display.get(), name, False); }

    /// The numbers of a property; none when the window has no such property of that type.
    std::vector<unsigned long> numbers(Window window, const char* property, Atom type)
    {
        constexpr long MANY = 1024;
        Atom found = None;
        int format = 0;
        unsigned long count = 0;
        unsigned long left = 0;
        unsigned char* data = nullptr;
        std::vector<unsigned long> values;
        if (XGetWindowProperty(display.get(), window, atom(property), 0, MANY, False, type, &found,
                               &format, &count, &left, &data) == Success &&
            found == type && format == 32) {
            values.resize(count);
            std::memcpy(values.data(), data, count * sizeof values[0]);
        }
        if (data != nullptr) {
            XFree(data);
        }
        return values;
    }

    bool isScene(Window window, unsigned long pid)
    {
        const std::vector<unsigned long> owner = numbers(window, "_NET_WM_PID", XA_CARDINAL);
        if (owner.empty() || owner[0] != pid) {
            return false;
        }
        char* name = nullptr;
        if (!XFetchName(display.get(), window, &name) || name == nullptr) {
            return false;
        }
        // The first frame gives it this title, with the frame rate.
        const bool isTitled = std::strncmp(name, "kelpix (", 8) == 0;
        XFree(name);
        return isTitled;
    }

    /// Looks at all windows: a window manager may have put it into frames.
    Window sceneBelow(Window parent, unsigned long pid)
    {
        Window unused = None;
        Window* windows = nullptr;
        unsigned count = 0;
        if (!XQueryTree(display.get(), parent, &unused, &unused, &windows, &count)) {
            return None;
        }
        Window found = None;
        for (unsigned i = 0; i < count && found == None; ++i) {
            found = isScene(windows[i], pid) ? windows[i] : sceneBelow(windows[i], pid);
        }
        if (windows != nullptr) {
            XFree(windows);
        }
        return found;
    }

    /// Whether there is a window manager that understands this hint.
    bool managerKnows(const char* hint)
    {
        const auto manager = numbers(root, "_NET_SUPPORTING_WM_CHECK", XA_WINDOW);
        // The hints of a window manager that has ended may still be there. Its window is not.
        if (manager.empty() ||
            numbers(manager[0], "_NET_SUPPORTING_WM_CHECK", XA_WINDOW) != manager) {
            return false;
        }
        const auto hints = numbers(root, "_NET_SUPPORTED", XA_ATOM);
        const Atom wanted = atom(hint);
        for (const unsigned long known : hints) {
            if (known == wanted) {
                return true;
            }
        }
        return false;
    }

    void askManagerForFullscreen(Window window)
    {
        constexpr long ADD = 1;
        constexpr long FROM_A_PROGRAM = 1;
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = window;
        event.xclient.message_type = atom("_NET_WM_STATE");
        event.xclient.format = 32;
        event.xclient.data.l[0] = ADD;
        event.xclient.data.l[1] = static_cast<long>(atom("_NET_WM_STATE_FULLSCREEN"));
        event.xclient.data.l[3] = FROM_A_PROGRAM;
        XSendEvent(display.get(), root, False, SubstructureRedirectMask | SubstructureNotifyMask,
                   &event);
    }
};

/// Waits for the scene's window. \return None when the program ended before
Window awaitScene(Desktop& desktop, pid_t pid)
{
    constexpr int BETWEEN_LOOKS = 50; // milliseconds
    const int process = static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
    if (process < 0) {
        return None;
    }
    Window window = desktop.sceneOf(pid);
    // The descriptor becomes readable when the process ends.
    for (pollfd end{process, POLLIN, 0}; window == None && poll(&end, 1, BETWEEN_LOOKS) == 0;) {
        window = desktop.sceneOf(pid);
    }
    close(process);
    return window;
}

} // namespace

int main(int argc, char* argv[])
{
    const char* const name = "kelpix-window-setup";
    return commandline::run(name, [&] {
        Options options;
        const auto arguments = commandline::parse({argv + 1, argv + argc}, tableOf(options));
        if (arguments.action != commandline::Action::work) {
            commandline::answer(arguments.action, name, usage());
            return 0;
        }
        if (options.pid == 0) {
            throw commandline::UsageError("--pid says whose window it is");
        }
        Desktop desktop;
        const Window window = awaitScene(desktop, options.pid);
        if (window == None) {
            return 1;
        }
        if (options.fullscreen) {
            desktop.makeFullscreen(window);
        }
        desktop.turnWheel(window, options.zoom);
        return 0;
    });
}
