#pragma once

#include "Options.h"

namespace wall {

class MpiTransport;
class Protocol;

/// Plays one tile of a wall, as one rank of an MPI job, until the show ends.
/// \param options  with paths as the user has written them
/// \return the process's exit status; rank 0 has said why on standard error
int playTile(const Options& options);

} // namespace wall
