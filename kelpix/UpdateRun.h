#pragma once

#include <cstdint>

class Boid;

/// Runs of updates: boids that a traversal updates one after another, with nothing in between but
/// their sprites, whose update does nothing. No other code runs during a run, so nothing but the
/// boids' own updates can change them, and what was copied out of them earlier in the run is true
/// still. Any other update of a boid is a run of its own: by a direct call, after another node, or
/// of a boid that is of a derived class or has an update function or more children.
namespace UpdateRun {

/// To be called at the start of each update of a boid.
/// \return the number of the run to which the update belongs, 1 or more; each run has another one
std::uint64_t of(const Boid& boid);

} // namespace UpdateRun
