#pragma once

#include <vector>

class Window;

/// Rates of all windows of the process, per second: the last call of addTimeouts sets them.
extern float tm_idle;
extern float tm_draw;

/// The list of open windows, and the two timers that drive each of them.
class AppManager {
public:
    std::vector<Window*> windowList; ///< borrows, in the order they were added

    AppManager() = default;
    AppManager(const AppManager&) = delete;
    AppManager& operator=(const AppManager&) = delete;

    /// Stops the timers of its windows.
    ~AppManager();

    /// Borrows the window: it must outlive this manager.
    void addWindow(Window* window) { windowList.push_back(window); }

    /// \return a pointer into this object
    std::vector<Window*>* getWindowList() { return &windowList; }

    /// Shows every window and starts its timers: redraws at \p redraw and updates at \p idle per
    /// second. With no windows it does nothing and leaves the rates unchanged.
    /// A rate that is not a positive number counts as 1, one above 10000 as 10000.
    void addTimeouts(float idle, float redraw);
};

/// Timer callback: Window::idle of the Window \p w (null: nothing), then re-arms itself.
void timerIdle(void* w);

/// Timer callback: asks the toolkit to repaint the Window \p w (null: nothing), then re-arms
/// itself.
void timerRedraw(void* w);
