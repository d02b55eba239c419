#include "AppManager.h"

#include "Window.h"

#include <FL/Fl.H>
#include <algorithm>

float tm_idle = 0;
float tm_draw = 0;

namespace {

/// Seconds between two firings. The toolkit makes up for every firing it has missed: a period of
/// next to nothing, 0 or less would keep it in its timer loop.
double period(float rate)
{
    constexpr double SHORTEST = 0.0001;
    return rate > 0 ? std::max(1.0 / static_cast<double>(rate), SHORTEST) : 1.0;
}

} // namespace

AppManager::~AppManager()
{
    for (Window* window : windowList) {
        Fl::remove_timeout(timerRedraw, window);
        Fl::remove_timeout(timerIdle, window);
    }
}

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
    if (w) {
        static_cast<Window*>(w)->idle();
    }
    Fl::repeat_timeout(period(tm_idle), timerIdle, w);
}

void timerRedraw(void* w)
{
    if (w) {
        static_cast<Window*>(w)->redraw();
    }
    Fl::repeat_timeout(period(tm_draw), timerRedraw, w);
}
