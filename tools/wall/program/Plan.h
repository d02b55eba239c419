#pragma once

#include "Options.h"
#include "WallFiles.h"
#include "WallLayout.h"

#include <cstddef>

namespace wall {

class Protocol;

/// What rank 0 has read and decided, as all ranks then have it.
struct Plan {
    WallFiles files;
    WallLayout layout; ///< with the options applied
    unsigned seed = 0; ///< of the first scene
};

/// Gets the same plan on all ranks: rank 0 reads the wall's files, the others get their bytes.
/// Throws StartError, on all ranks, for files that describe no wall, or one of another size.
/// \param options  of this rank: the same on all
/// \param ranks    how many there are
Plan agreeOnPlan(Protocol& protocol, const Options& options, bool isFirst, std::size_t ranks);

} // namespace wall
