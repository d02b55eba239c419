#include "PackedBoids.h"

#include "Boid.h"

#include <algorithm>
#include <limits>

namespace {

constexpr float NOTHING = std::numeric_limits<float>::quiet_NaN();

void copy(const Boid& boid, PackedBoids::Group& group, std::size_t lane)
{
    group.x[lane] = boid.pos.x;
    group.y[lane] = boid.pos.y;
    group.z[lane] = boid.pos.z;
    group.id[lane] = boid.boidId;
    group.vx[lane] = boid.vel.x;
    group.vy[lane] = boid.vel.y;
    group.vz[lane] = boid.vel.z;
}

} // namespace

bool PackedBoids::fill(const std::vector<Node*>& slots, const Bucket* cell)
{
    groups.resize((slots.size() + 3) / 4);
    for (Group& group : groups) {
        std::fill_n(group.x, 4, NOTHING);
    }
    bool registered = true;
    for (std::size_t slot = 0; slot < slots.size(); ++slot) {
        if (const auto* boid = static_cast<const Boid*>(slots[slot])) {
            copy(*boid, groups[slot / 4], slot % 4);
            registered = registered && boid->myBucket == cell && boid->slot == slot;
        }
    }
    return registered;
}

void PackedBoids::put(std::size_t slot, const Boid* boid)
{
    if (slot / 4 >= groups.size()) {
        return;
    }
    Group& group = groups[slot / 4];
    if (boid != nullptr) {
        copy(*boid, group, slot % 4);
    } else {
        group.x[slot % 4] = NOTHING;
    }
}
