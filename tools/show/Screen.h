#pragma once

#include "Conductor.h"
#include "Desktop.h"
#include "Look.h"

#include <functional>
#include <optional>
#include <sys/types.h>
#include <vector>

namespace show {

/// The windows of the showings on the X server that DISPLAY names: those whose property _NET_WM_PID
/// is a process of a showing. Hides the pointer over them and keeps the screen awake.
///
/// Where there is a window manager, it is asked for what is needed. Where there is none, this takes
/// its place: a window that wants to be mapped is then placed and lowered before it is mapped, so
/// that nothing of it is seen too early. A compositor that only shows one window is shown a window
/// of this, and the windows of the showings in it, always full screen.
///
/// A full-screen window gets the monitor of the look; without one, or while that is gone, it gets
/// the first monitor under a window manager, and else the whole X screen with all its monitors.
class Screen {
public:
    /// What it asks, and what it tells.
    struct Listener {
        /// \return the showing that a process belongs to
        std::function<std::optional<Id>(pid_t)> whose;
        /// A showing begins a frame: each of its windows that tell a rate has begun one.
        std::function<void(Id)> onFrame;
        /// A window is there whose title tells no rate, and is not that of a scene that will.
        std::function<void(Id)> onSilent;
        /// A showing's windows have all been mapped, or not all of them are any more.
        std::function<void(Id, bool isVisible)> onVisible;
    };

    /// Throws std::runtime_error, with a line for the user, when the X server cannot be reached,
    /// has no such monitor, or when another one has taken the window manager's place there.
    explicit Screen(Look look);
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    ~Screen();

    int descriptor() const { return ConnectionNumber(desktop.display()); }

    /// Whether there is something to read that the descriptor does not tell: it came with an
    /// answer. Throws std::runtime_error when the X server has gone.
    bool hasNews() const;

    /// Handles all that the X server has told so far.
    void read(const Listener& listener);

    /// Keeps a showing in front while another one opens.
    void hold(Id showing) const;
    void dress(Id showing) const;
    void raise(Id showing) const;
    void settle(Id showing) const;

    /// \return false when the keyboard's first layout has no q: the scene takes keys by that one
    bool pressQ(Id showing) const;

    /// \return the frames a second in the title of the showing's window; none until they have been
    /// counted, for which the title has a 0
    std::optional<double> rate(Id showing) const;

private:
    struct Scene {
        Window window;
        Id showing;
        bool tellsRate; ///< has done so, or will
        bool isMapped = true;
        int frames = 0;
        std::optional<double> rate = {};
    };
    struct Place {
        int x, y, width, height;
    };

    Desktop desktop;
    Look look;
    Cursor blank = None;
    /// Where this places and stacks the windows itself: the root, or a window of its own; None =
    /// the window manager does.
    Window ground = None;
    std::vector<Scene> scenes;

    Display* display() const { return desktop.display(); }
    bool hasOwnGround() const { return ground != None && ground != desktop.root(); }
    bool isFullscreen() const { return look.fullscreen || hasOwnGround(); }
    bool takeManagersPlace();
    Window makeGround();
    std::vector<Place> monitors() const;
    Place fullScreen() const;
    Scene* find(Window window);
    Scene* recognize(Window window, const Listener& listener);
    void appear(const Scene* scene, const Listener& listener) const;
    void readTitle(Window window, const Listener& listener);
    void setMapped(Window window, bool isMapped, const Listener& listener);
    int framesOf(Id showing) const;
    void place(const Scene& scene) const;
    bool hasOneWindow(Id showing) const;
    std::optional<Place> placeOf(Window window) const; ///< none when it has gone
    void removeDecorations(Window window) const;
    void askForPlace(Window window, const Place& place) const;
    void wake(Window window) const;
    void grant(const XConfigureRequestEvent& request) const;
    void forEach(Id showing, const std::function<void(Window)>& action) const;
};

} // namespace show
