#pragma once

class Fl_Window;

/// A position on the screen, pixels from its upper left corner.
struct ScreenPosition {
    int x, y;
};

/// Asks the X server where it has the upper left corner of a window that is shown. FLTK moves a
/// window that it shows near the edge of the screen, to leave room for a frame, and does not tell
/// the widget.
ScreenPosition screenPosition(const Fl_Window& window);
