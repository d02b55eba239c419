#include "AppManager.h"

#include "Window.h"

#include <FL/Fl.H>
#include <cmath>

float tm_idle = 0;
float tm_draw = 0;

namespace {

/// Seconds between two firings. A period of 0 or less would keep the toolkit in its timer loop.
double period(float rate)
{
    return std::isfinite(rate) && rate > 0 ? 1.0 / static_cast<double>(rate) : 1.0;
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
