#pragma once

#include <cstddef>

/// Allocations that fail: those of the project's own code by new, realloc or strdup, not those of
/// the system's libraries.
namespace fuzz::memory {

/// The largest allocation between enter and leave, in bytes; larger ones fail. A few bytes of a
/// file can ask for any size, which would take time.
inline std::size_t most = std::size_t{64} << 20;

/// Lets one allocation between enter and leave fail, after \p number that succeed.
void plan(unsigned number);

/// Forgets the plan. \return whether an allocation has failed
bool forget();

/// \return whether there is a plan
bool isScarce();

void enter();
void leave();

/// Counts one more allocation: for a target's replacement of a library's function.
/// \return whether it fails
bool runsOut(std::size_t size = 1);

} // namespace fuzz::memory
