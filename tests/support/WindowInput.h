#pragma once

#include <string>

class Fl_Window;

/// Runs FLTK's event loop until \p condition holds, a minute at most.
/// \return whether it holds
bool runUntil(bool (*condition)(void*), void* data);

template<typename Condition>
bool runUntil(Condition condition)
{
    return runUntil([](void* data) { return (*static_cast<Condition*>(data))(); }, &condition);
}

/// Runs the event loop until the X server has answered everything that was sent to it, and its
/// events have been handled.
void handlePendingEvents();

/// Puts the window, which is shown, into a frame with the upper left corner (\p x, \p y) on the
/// screen, as a window manager does, and handles the events of that. The frame lives as long as the
/// connection to the X server.
void putIntoFrame(const Fl_Window& window, int x, int y);

/// A position on the screen, pixels from its upper left corner.
struct Position {
    int x, y;
};

/// \return where the X server has the upper left corner of the window, which is shown
Position originOf(const Fl_Window& window);

/// Runs xdotool with \p arguments, in which "@" stands for the X window of \p window.
/// \return what it printed, without the final newline
std::string xdotool(const Fl_Window& window, std::string arguments);
