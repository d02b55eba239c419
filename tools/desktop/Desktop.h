#pragma once

#include <X11/Xlib.h>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

/// What programs do from outside with the windows of the scene: on the X server that DISPLAY names,
/// with a window manager or without one.
///
/// A window may go at any time; what is asked of it then has no effect.
class Desktop {
public:
    /// Throws std::runtime_error, with a line for the user, when the X server cannot be reached.
    Desktop();

    Display* display() const { return connection.get(); }
    Window root() const { return rootWindow; }
    Atom atom(const char* name) const { return XInternAtom(display(), name, False); }

    /// The numbers of a property, at most 1024; none when the window has no such property of that
    /// type.
    std::vector<unsigned long> numbers(Window window, const char* property, Atom type) const;

    /// \return the process that says it owns the window, 0 when none does
    pid_t owner(Window window) const;

    /// Whether its title begins as that of the scene, with or without a rate.
    bool isScene(Window window) const { return title(window).starts_with("kelpix"); }

    /// \return the frames a second in the window's title, which the scene's windows tell from their
    ///         first frame on: "kelpix (40.0 fps)". None for a title that does not end like that.
    std::optional<double> rate(Window window) const;

    /// Whether it is a window of its own: not a menu, a tooltip, nor a dialog of another one.
    bool isMain(Window window) const;

    /// Whether it is mapped. One that lies behind others is too.
    bool isMapped(Window window) const;

    /// \return the name of the window manager, empty when there is none
    std::string managersName() const;

    /// Whether there is a window manager that understands this hint.
    bool managerKnows(const char* hint) const;

    /// Sends a request about the window to the window manager.
    /// \param data  at most five numbers
    void askManager(Window window, const char* request, std::initializer_list<long> data) const;

    /// Asks the window manager to add a state, or to take it away.
    void setState(Window window, const char* state, bool on) const;

    /// Gives the window the whole screen, and the keys.
    void makeFullscreen(Window window) const;

    /// Turns the wheel over a window.
    /// \param steps  above 0 zooms in
    void turnWheel(Window window, int steps) const;

private:
    std::string title(Window window) const;
    Window manager() const;

    std::unique_ptr<Display, int (*)(Display*)> connection;
    Window rootWindow = None;
};
