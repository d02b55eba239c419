#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

class Boid;
class Bucket;
class Node;

/// What a search for neighbors reads of the boids in a cell, copied out of them and packed: four
/// boids take two cache lines, where each of them has its own otherwise. A search looks at far more
/// boids than it finds, so it waits for memory more than for anything else.
///
/// The copies do not follow the boids. See UpdateRun for how long they are true.
class PackedBoids {
public:
    /// Four slots of the cell. In an empty slot x is NaN, and the rest may be anything.
    struct alignas(64) Group {
        float x[4], y[4], z[4]; ///< positions
        std::int32_t id[4];
        float vx[4], vy[4], vz[4]; ///< velocities
    };

    /// The slots of the cell in their order, and empty ones up to a whole group.
    const std::vector<Group>& all() const { return groups; }

    /// Copies all boids of the slots.
    /// \return whether each of them is registered in \p cell, and in this very slot: only then is
    /// it
    ///         copied again after its own update
    bool fill(const std::vector<Node*>& slots, const Bucket* cell);

    /// Copies one boid, null for an empty slot. Does nothing for a slot beyond the last group.
    void put(std::size_t slot, const Boid* boid);

private:
    std::vector<Group> groups;
};
