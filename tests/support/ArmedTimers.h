#pragma once

#include <vector>

/// One call of Fl::add_timeout or Fl::repeat_timeout.
struct ArmedTimer {
    double seconds;
    void (*callback)(void*);
    void* argument;
    bool repeated; ///< armed with repeat_timeout

    bool operator==(const ArmedTimer&) const = default;
};

/// The timers that the code under test has armed, in order. In a program that links ArmedTimers.cpp
/// these calls pass through here on their way to FLTK.
std::vector<ArmedTimer>& armedTimers();
