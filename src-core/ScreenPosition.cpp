#include "ScreenPosition.h"

#include <FL/x.H>

ScreenPosition screenPosition(const Fl_Window& window)
{
    ScreenPosition origin{window.x(), window.y()};
    Window child = None;
    XTranslateCoordinates(fl_display, fl_xid(&window), RootWindow(fl_display, fl_screen), 0, 0,
                          &origin.x, &origin.y, &child);
    return origin;
}
