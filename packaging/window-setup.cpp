// kelpix-window-setup: does with the window of a program that has just been started what a person
// would do: gives it the whole screen, turns the mouse wheel over it.

#include "CommandLine.h"
#include "Desktop.h"

#include <limits>
#include <poll.h>
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

/// \return the window in which process \p pid shows the scene, None before its first frame. All
///         windows below \p parent are looked at: a window manager may have put it into frames.
Window sceneBelow(const Desktop& desktop, Window parent, pid_t pid)
{
    Window unused = None;
    Window* windows = nullptr;
    unsigned count = 0;
    if (!XQueryTree(desktop.display(), parent, &unused, &unused, &windows, &count)) {
        return None;
    }
    Window found = None;
    for (unsigned i = 0; i < count && found == None; ++i) {
        const bool isScene = desktop.owner(windows[i]) == pid && desktop.rate(windows[i]);
        found = isScene ? windows[i] : sceneBelow(desktop, windows[i], pid);
    }
    if (windows != nullptr) {
        XFree(windows);
    }
    return found;
}

/// Waits for the scene's window. \return None when the program ended before
Window awaitScene(const Desktop& desktop, pid_t pid)
{
    constexpr int BETWEEN_LOOKS = 50; // milliseconds
    const int process = static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
    if (process < 0) {
        return None;
    }
    Window window = sceneBelow(desktop, desktop.root(), pid);
    // The descriptor becomes readable when the process ends.
    for (pollfd end{process, POLLIN, 0}; window == None && poll(&end, 1, BETWEEN_LOOKS) == 0;) {
        window = sceneBelow(desktop, desktop.root(), pid);
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
        const Desktop desktop;
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
