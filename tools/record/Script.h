#pragma once

#include "Time.h"

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
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

/// A moment of a glide: the zoom factor that the view gets before the update of a step.
struct Zoom {
    std::int64_t step;
    float factor; ///< 1 = unzoomed

    bool operator==(const Zoom&) const = default;
};

/// A moment of a glide: the place of the water that comes into the middle of the picture before the
/// update of a step.
struct Pan {
    std::int64_t step;
    float x, y; ///< (0, 0) is the water's bottom left, (1, 1) its top right

    bool operator==(const Pan&) const = default;
};

/// What is done to the scene before the update of a step.
using Act = std::variant<Input, Zoom, Pan>;

std::int64_t stepOf(const Act& act);

/// Mouse, keyboard and camera as a text: one line for each act, in the order of time.
///
///     TIME move X Y                  the pointer goes there
///     TIME click X Y                 a right click
///     TIME wheel up|down [COUNT]     zooms
///     TIME key KEY                   a key is pressed; q ends the scene
///     TIME drag KEY X Y X Y SECONDS  drags from one place to the other while KEY is held
///     TIME glide zoom FROM TO SECONDS    zooms from one factor to the other (see Glide)
///     TIME glide pan X Y X Y SECONDS     the middle of the picture goes from one place to the
///     other
///
/// TIME is in seconds, places in window pixels from the top left, those of a pan in the water's
/// unit square from the bottom left; KEY is a character or "space". Text after # and empty lines
/// are ignored. While a drag lasts only the wheel and glides can be used. What would act against a
/// glide waits for its end: the wheel and a zoom for a zoom, a drag with v and a pan for a pan.
struct Script {
    std::vector<Act> acts;               ///< in the order of their steps
    std::optional<std::int64_t> endStep; ///< the step at which q is pressed

    /// \param name  for messages
    /// Throws ScriptError with name, line number and what is wrong.
    static Script parse(std::istream& text, const std::string& name);

    /// Reads a file. Throws ScriptError, also when it cannot be read.
    static Script read(const std::filesystem::path& path);
};

} // namespace record
