#pragma once

#include "Options.h"
#include "Script.h"

#include <string>

namespace record {

/// How a run has ended.
struct Outcome {
    std::string text; ///< a line that says what was made, or lines with numbers
    bool good;        ///< false when the film flashes too much
};

/// Plays the scene of the working directory's media as the options say, and saves what they ask
/// for: a film or a picture; writes it to standard output in real time; or finds the numbers of its
/// state, or of its flashes. Progress goes to standard error.
///
/// Ends the process with status 1 where the scene's readers end it. Throws std::runtime_error, with
/// a line for the user, when something else is in the way, and Interruption. Nothing is left behind
/// in either case.
/// \param options  with absolute paths
Outcome runRecorder(const Options& options, const Script& script);

} // namespace record
