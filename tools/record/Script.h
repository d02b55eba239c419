#pragma once

#include "Time.h"

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace record {

/// A script that makes no sense, or that cannot be read. The text says what is wrong with it.
class ScriptError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// One event as FLTK reports it to a window.
struct Input {
    std::int64_t step; ///< of the scene; the event arrives before its update
    int event;         ///< FL_PUSH, FL_DRAG ...
    int x, y;          ///< the pointer, window pixels, top left 0
    int key;           ///< key or button, as Fl::event_key returns it
    int wheel;         ///< steps of the wheel, down is positive

    bool operator==(const Input&) const = default;
};

/// Mouse and keyboard for the window as a text: one line for each act, in the order of time.
///
///     TIME move X Y                  the pointer goes there
///     TIME click X Y                 a right click
///     TIME wheel up|down [COUNT]     zooms
///     TIME key KEY                   a key is pressed; q ends the scene
///     TIME drag KEY X Y X Y SECONDS  drags from one place to the other while KEY is held
///
/// TIME is in seconds, places in window pixels from the top left, KEY is a character or "space".
/// Text after # and empty lines are ignored. While a drag lasts only the wheel can be used.
struct Script {
    std::vector<Input> inputs;           ///< in the order of their steps
    std::optional<std::int64_t> endStep; ///< the step at which q is pressed

    /// \param name  for messages
    /// Throws ScriptError with name, line number and what is wrong.
    static Script parse(std::istream& text, const std::string& name);

    /// Reads a file. Throws ScriptError, also when it cannot be read.
    static Script read(const std::filesystem::path& path);
};

} // namespace record
