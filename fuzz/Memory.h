#pragma once

/// Memory that runs out: one allocation of the project's own code fails, by new, realloc or strdup.
/// The libraries of the system go on as ever.
namespace fuzz::memory {

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
bool runsOut();

} // namespace fuzz::memory
