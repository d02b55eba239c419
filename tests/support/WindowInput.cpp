#include "WindowInput.h"

#include <FL/Fl.H>
#include <FL/Fl_Window.H>
#include <FL/x.H>
#include <chrono>
#include <cstdio>
#include <memory>

bool runUntil(bool (*condition)(void*), void* data)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!condition(data)) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        Fl::wait(0.02);
    }
    return true;
}

void handlePendingEvents()
{
    XSync(fl_display, False);
    while (XPending(fl_display) > 0) {
        Fl::wait(0);
    }
    Fl::check();
}

void putIntoFrame(const Fl_Window& window, int x, int y)
{
    constexpr int LEFT = 4;
    constexpr int TOP = 24;
    const Window frame =
        XCreateSimpleWindow(fl_display, DefaultRootWindow(fl_display), x, y, 800, 800, 0, 0, 0);
    XMapWindow(fl_display, frame);
    XReparentWindow(fl_display, fl_xid(&window), frame, LEFT, TOP);
    handlePendingEvents();
}

Position originOf(const Fl_Window& window)
{
    Position origin{};
    Window child = None;
    XTranslateCoordinates(fl_display, fl_xid(&window), DefaultRootWindow(fl_display), 0, 0,
                          &origin.x, &origin.y, &child);
    return origin;
}

std::string xdotool(const Fl_Window& window, std::string arguments)
{
    const std::string id = std::to_string(fl_xid(&window));
    for (std::size_t at = arguments.find('@'); at != std::string::npos; at = arguments.find('@')) {
        arguments.replace(at, 1, id);
    }
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> output(
        popen(("xdotool " + arguments).c_str(), "r"), pclose);
    std::string text;
    for (int c = std::fgetc(output.get()); c != EOF; c = std::fgetc(output.get())) {
        text += static_cast<char>(c);
    }
    return text.substr(0, text.find_last_not_of('\n') + 1);
}
