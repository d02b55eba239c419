#include "UpdateRun.h"

#include "Boid.h"
#include "Boider.h"
#include "SceneGraph.h"

#include <typeinfo>

namespace {

/// Whether nothing but Boid::doupdate and the empty update of the sprite runs when a traversal
/// updates the boid and what is below it.
bool isPlain(const Boid& boid)
{
    const Boider* const sprite = boid.boider;
    return typeid(boid) == typeid(Boid) && boid.updateptr == nullptr && sprite != nullptr &&
           boid.children.size() == 1 && boid.children.front() == sprite &&
           sprite->updateptr == nullptr && sprite->children.empty();
}

} // namespace

std::uint64_t UpdateRun::of(const Boid& boid)
{
    static std::uint64_t run = 0;
    static std::uint64_t next = 0; // the step at which the run goes on; 0 when it cannot
    const UpdateStep& step = SceneGraph::updateStep();
    const bool plain = step.node == &boid && isPlain(boid);
    if (!plain || step.number != next) {
        ++run;
    }
    next = plain ? step.number + 2 : 0; // in between is the step of the sprite
    return run;
}
