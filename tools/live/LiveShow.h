#pragma once

#include "Options.h"

namespace live {

/// Plays the scene in a window until that is closed. Throws std::runtime_error, with a line for the
/// user, when it cannot; record::Interruption when a signal asks for the end.
/// \param options  with paths as the user has written them
void playLive(const Options& options);

} // namespace live
