#include "Neighborhood.h"

#include "Boid.h"
#include "BucketIndex.h"

#include <bit>
#include <cstdint>

namespace {

/// Scratch memory of inCells: kept from call to call, so that a search allocates nothing. Both have
/// room for every boid of the cells; only the first entries are in use.
struct Scratch {
    std::vector<Boid*> candidates;
    std::vector<double> squares; ///< of the candidates' distances; never shorter than candidates
};
Scratch scratch;

/// largestSquareWithin, with the last result kept: all boids have the same radius.
double reachOf(float radius)
{
    static float known = -1;
    static double reach = -1;
    if (known != radius) {
        known = radius;
        reach = largestSquareWithin(radius);
    }
    return reach;
}

// Both functions below drop entries without a branch: each entry is written, and the end index
// advances by 0 or 1. The processor could not predict such a branch.

/// Writes the boids in the cells into scratch.candidates.
/// \return their number
std::size_t listBoids(const std::vector<Bucket*>& cells)
{
    std::size_t count = 0;
    for (const Bucket* cell : cells) {
        const std::vector<Node*>& slots = cell->boidList;
        if (scratch.candidates.size() < count + slots.size()) {
            // Squares first: if the second resize throws, squares is still long enough.
            scratch.squares.resize(count + slots.size());
            scratch.candidates.resize(count + slots.size());
        }
        Boid** const list = scratch.candidates.data();
        for (Node* node : slots) {
            list[count] = static_cast<Boid*>(node);
            count += static_cast<std::size_t>(node != nullptr);
        }
    }
    return count;
}

/// Keeps only the candidates within the search radius, and writes the squares of their distances.
/// \return their number
std::size_t keepNear(std::size_t count, const Boid& boid)
{
    const double reach = reachOf(boid.searchRadius);
    const Vec3 pos = boid.pos;
    Boid** const list = scratch.candidates.data();
    double* const square = scratch.squares.data();
    std::size_t near = 0;
    for (std::size_t i = 0; i < count; ++i) {
        list[near] = list[i];
        square[near] = Vec3::SquaredDistance(list[near]->pos, pos);
        near += static_cast<std::size_t>(square[near] <= reach);
    }
    return near;
}

} // namespace

Neighborhood Neighborhood::ofList(const std::vector<Boid*>& list)
{
    Neighborhood result;
    for (const Boid* boid : list) {
        result.pos = result.pos + boid->pos;
        result.vel = result.vel + boid->vel;
    }
    result.count = static_cast<int>(list.size());
    return result;
}

Neighborhood Neighborhood::inCells(const std::vector<Bucket*>& cells, const Boid& boid)
{
    const std::size_t near = keepNear(listBoids(cells), boid);
    int count = 0;
    Vec3 pos;
    Vec3 vel;
    Boid* closest = nullptr;
    Closest nearest;
    for (std::size_t i = 0; i < near; ++i) {
        Boid* other = scratch.candidates[i];
        if (other->boidId == boid.boidId) {
            continue;
        }
        ++count;
        pos = pos + other->pos;
        vel = vel + other->vel;
        if (nearest.isNearer(scratch.squares[i])) {
            closest = other;
        }
    }
    return {count, pos, vel, closest};
}

double largestSquareWithin(float radius)
{
    const auto isWithin = [radius](std::uint64_t bits) {
        return static_cast<float>(std::sqrt(std::bit_cast<double>(bits))) <= radius;
    };
    if (!isWithin(0)) {
        return -1;
    }
    // A binary search over bit patterns: positive doubles are ordered as their bits are, and sqrt
    // is monotonic.
    std::uint64_t within = 0;
    std::uint64_t last = std::bit_cast<std::uint64_t>(std::numeric_limits<double>::infinity());
    while (within < last) {
        const std::uint64_t middle = last - (last - within) / 2;
        if (isWithin(middle)) {
            within = middle;
        } else {
            last = middle - 1;
        }
    }
    return std::bit_cast<double>(within);
}
