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

/// Runs xdotool with \p arguments, in which "@" stands for the X window of \p window.
/// \return what it printed, without the final newline
std::string xdotool(const Fl_Window& window, std::string arguments);
