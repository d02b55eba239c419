#pragma once

#include <vector>

class Window;

/// Updates per second and frames per second of all windows of the process: the last call of
/// addTimeouts sets them.
extern float tm_idle;
extern float tm_draw;

/// Lists the open windows and starts the two timers of each, for updates and redraws.
///
/// \par Example
/// \snippet SceneWindow.cpp timers
class AppManager {
public:
    std::vector<Window*> windowList; ///< borrows, in the order they were added

    AppManager() = default;
    AppManager(const AppManager&) = delete;
    AppManager& operator=(const AppManager&) = delete;

    /// Borrows the window: it must still exist when addTimeouts is called.
    void addWindow(Window* window) { windowList.push_back(window); }

    /// \return a pointer into this object
    std::vector<Window*>* getWindowList() { return &windowList; }

    /// Shows every window and starts its timers: a redraw and an update at once, then \p redraw
    /// frames and \p idle updates per second. With no windows it does nothing and leaves the rates
    /// unchanged. The timers belong to the window: they outlive this manager, go on while the
    /// window is hidden, and end with the window.
    ///
    /// A period is 1 / rate seconds, so a timer with a rate of 0 does not fire again. Negative
    /// rates and NaN count as 0, rates above 10,000 as 10,000. Call it once for each window: a
    /// second call starts two more timers.
    void addTimeouts(float idle, float redraw);
};

/// Timer callback: calls Window::idle of the Window \p w (null: nothing), then re-arms itself.
void timerIdle(void* w);

/// Timer callback: has FLTK repaint the Window \p w (null: nothing), then re-arms itself.
void timerRedraw(void* w);
