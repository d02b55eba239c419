#pragma once

#include <stdexcept>

/// FLTK cannot go on, most often because there is no display. The text is FLTK's own, cut to 255
/// characters.
class DisplayFailure : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Lets FLTK throw DisplayFailure from then on, where its own handler would end the process without
/// unwinding. Opens no display.
void throwDisplayFailures();
