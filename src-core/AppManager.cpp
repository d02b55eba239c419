#include "AppManager.h"

#include "Window.h"

#include <FL/Fl.H>
#include <algorithm>
#include <limits>

float tm_idle = 0;
float tm_draw = 0;

namespace {

/// Seconds between two firings; infinity: never again. It is never 0, negative or NaN: a timer that
/// is due as soon as it is armed would keep FLTK in its timer loop.
double period(float rate)
{
    constexpr double SHORTEST = 0.0001;
    if (!(rate > 0)) {
        return std::numeric_limits<double>::infinity();
    }
    return std::max(1.0 / static_cast<double>(rate), SHORTEST);
}

} // namespace

void AppManager::addTimeouts(float idle, float redraw)
{
    for (Window* window : windowList) {
        window->show();
        tm_draw = redraw;
        tm_idle = idle;
        Fl::add_timeout(0.0, timerRedraw, window);
        Fl::add_timeout(0.0, timerIdle, window);
    }
}

void timerIdle(void* w)
{
    if (w != nullptr) {
        static_cast<Window*>(w)->idle();
    }
    Fl::repeat_timeout(period(tm_idle), timerIdle, w);
}

void timerRedraw(void* w)
{
    if (w != nullptr) {
        static_cast<Window*>(w)->redraw();
    }
    Fl::repeat_timeout(period(tm_draw), timerRedraw, w);
}
