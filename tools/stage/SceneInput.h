#pragma once

class Window;

/// One event as FLTK reports it to a window.
struct SceneInput {
    int event; ///< FL_PUSH, FL_DRAG ...
    int x, y;  ///< the pointer, window pixels, top left 0
    int key;   ///< key or button, as Fl::event_key returns it
    int wheel; ///< steps of the wheel, down is positive
};

/// Hands an event to a window that need not be shown, as FLTK's current event (Fl::event_key ...),
/// which it stays.
void give(Window& window, const SceneInput& input);
