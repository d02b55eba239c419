#pragma once

#include <cstddef>

/// Memory that runs out: one allocation of the project's own code fails, by new, realloc or strdup.
/// The libraries of the system go on as ever.
namespace fuzz::memory {

/// The largest allocation between enter and leave, in bytes; larger ones fail. Few bytes of a file
/// can ask for any size, and a target is to try many of them in a second.
inline std::size_t most = std::size_t{64} << 20;

/// The next allocation but \p number fails, of those between enter and leave.
void plan(unsigned number);

/// Forgets the plan. \return whether an allocation has failed
bool forget();

/// There is a plan.
bool isScarce();

void enter();
void leave();

/// One more allocation: for what a target puts in the place of a library's function.
/// \return whether it fails
bool runsOut(std::size_t size = 1);

} // namespace fuzz::memory
