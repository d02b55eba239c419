// A small program with a window like that of the scene: the same title, class and keys, and nothing
// drawn before the X server asks for it, nor while it is not mapped. Its picture is one color,
// another one for each process.
//
// Usage: FakeScene [BEHAVIOR ...]
//   opening=SECONDS   before there is a window
//   status=N          ends with this status instead of opening a window
//   stubborn          ignores q and SIGTERM
//   children          has a child in its session, and one that has left it
//   orphan            has started a process that has left its session, and has lost its parent
//   title=TEXT        has this title all the time, instead of one that tells the frames a second

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/cursorfont.h>
#include <X11/keysym.h>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <poll.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr int BETWEEN_FRAMES = 50; // milliseconds
constexpr int COUNTED = 5;         // frames until the title tells how many they are

struct Behavior {
    double opening = 0.2;
    int status = -1;
    bool isStubborn = false;
    bool hasChildren = false;
    bool hasOrphan = false;
    std::string title;
};

Behavior behaviorOf(int count, char** words)
{
    Behavior behavior;
    for (int i = 1; i < count; ++i) {
        const std::string word = words[i];
        const std::string value = word.substr(word.find('=') + 1);
        if (word.starts_with("opening=")) {
            behavior.opening = std::stod(value);
        } else if (word.starts_with("status=")) {
            behavior.status = std::stoi(value);
        } else if (word == "stubborn") {
            behavior.isStubborn = true;
        } else if (word == "children") {
            behavior.hasChildren = true;
        } else if (word == "orphan") {
            behavior.hasOrphan = true;
        } else if (word.starts_with("title=")) {
            behavior.title = value;
        } else {
            std::fprintf(stderr, "FakeScene: what is %s?\n", word.c_str());
            std::exit(2);
        }
    }
    return behavior;
}

/// Starts a process that does nothing.
void startChild(bool leavesSession)
{
    if (fork() == 0) {
        if (leavesSession) {
            setsid();
        }
        for (;;) {
            pause();
        }
    }
}

/// Starts a program whose parent ends at once.
void startOrphan()
{
    const pid_t parent = fork();
    if (parent == 0) {
        if (fork() == 0) {
            setsid();
            execlp("sleep", "sleep", "100000", nullptr);
        }
        _exit(0);
    }
    waitpid(parent, nullptr, 0);
}

class Scene {
public:
    explicit Scene(const Behavior& behavior) : behavior(behavior), display(XOpenDisplay(nullptr))
    {
        if (display == nullptr) {
            std::exit(1);
        }
        XSetWindowAttributes attributes{};
        attributes.event_mask = ExposureMask | KeyPressMask | FocusChangeMask | StructureNotifyMask;
        attributes.bit_gravity = NorthWestGravity;
        attributes.cursor = XCreateFontCursor(display, XC_left_ptr);
        window = XCreateWindow(display, DefaultRootWindow(display), 0, 0, 300, 200, 0,
                               CopyFromParent, InputOutput, CopyFromParent,
                               CWEventMask | CWBitGravity | CWCursor, &attributes);
        char name[] = "kelpix";
        char type[] = "Kelpix";
        XClassHint hint{name, type};
        XSetClassHint(display, window, &hint);
        XStoreName(display, window, behavior.title.empty() ? name : behavior.title.c_str());
        const long pid = getpid();
        XChangeProperty(display, window, XInternAtom(display, "_NET_WM_PID", False), XA_CARDINAL,
                        32, PropModeReplace, reinterpret_cast<const unsigned char*>(&pid), 1);
        // Bright, and another one for the next process.
        const auto mixed = static_cast<unsigned long>(getpid()) * 2654435761UL;
        XSetForeground(display, DefaultGC(display, 0), 0x808080 | (mixed & 0x7f7f7f));
        XMapWindow(display, window);
    }

    ~Scene() { XCloseDisplay(display); }

    void run()
    {
        while (!hasEnded) {
            pollfd events{ConnectionNumber(display), POLLIN, 0};
            XFlush(display);
            const int answer = XPending(display) > 0 ? 1 : poll(&events, 1, BETWEEN_FRAMES);
            while (XPending(display) > 0) {
                handle();
            }
            if (answer == 0 && isExposed) {
                draw();
            }
        }
    }

private:
    Behavior behavior;
    Display* display;
    Window window = None;
    bool isExposed = false;
    bool hasFocus = false;
    bool hasEnded = false;
    int frames = 0;

    void handle()
    {
        XEvent event;
        XNextEvent(display, &event);
        if (event.type == Expose) {
            isExposed = true;
            draw();
        }
        isExposed = isExposed && event.type != UnmapNotify;
        hasFocus = event.type == FocusIn || (hasFocus && event.type != FocusOut);
        if (event.type == KeyPress && hasFocus && !behavior.isStubborn) {
            hasEnded = XLookupKeysym(&event.xkey, 0) == XK_q;
        }
    }

    void draw()
    {
        if (behavior.title.empty()) {
            XStoreName(display, window,
                       frames < COUNTED ? "kelpix (0.0 fps)" : "kelpix (20.0 fps)");
        }
        ++frames;
        XFillRectangle(display, window, DefaultGC(display, 0), 0, 0, 10000, 10000);
    }
};

} // namespace

int main(int argc, char** argv)
{
    const Behavior behavior = behaviorOf(argc, argv);
    if (behavior.isStubborn) {
        std::signal(SIGTERM, SIG_IGN);
    }
    if (behavior.hasChildren) {
        startChild(false);
        startChild(true);
    }
    if (behavior.hasOrphan) {
        startOrphan();
    }
    if (behavior.status >= 0) {
        return behavior.status;
    }
    std::this_thread::sleep_for(std::chrono::duration<double>(behavior.opening));
    Scene(behavior).run();
    return 0;
}
