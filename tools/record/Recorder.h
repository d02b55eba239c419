#pragma once

#include "Options.h"
#include "Script.h"

#include <string>

namespace record {

/// Plays the scene of the working directory's media as the options say, and saves what they ask
/// for: a film or a picture; or finds the numbers of its state. Progress goes to standard error.
///
/// Ends the process with status 1 where the scene's readers end it. Throws std::runtime_error, with
/// a line for the user, when something else is in the way, and Interruption. Nothing is left behind
/// in either case.
/// \param options  with absolute paths
/// \return a line that says what was made, or lines with the numbers
std::string runRecorder(const Options& options, const Script& script);

} // namespace record
