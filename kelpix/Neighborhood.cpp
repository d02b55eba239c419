#include "Neighborhood.h"

#include "Boid.h"
#include "BucketIndex.h"

#include <bit>
#include <cstdint>

namespace {

// Room for the boids of a few cells and the squares of their distances, used again and again.
std::vector<Boid*> boids;
std::vector<double> squares;

/// largestSquareWithin, found once for all boids of the same radius.
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

// Empty slots, and boids in and out of reach, come in no order that a processor could foresee. Both
// lists are therefore cut down without a branch: every entry is written, and the end moves on or
// not.

/// Lists the boids in the cells. \return their number
std::size_t listBoids(const std::vector<Bucket*>& cells)
{
    std::size_t count = 0;
    for (const Bucket* cell : cells) {
        const std::vector<Node*>& slots = cell->boidList;
        if (boids.size() < count + slots.size()) {
            // This one first: it is then never the shorter one, wherever memory ends.
            squares.resize(count + slots.size());
            boids.resize(count + slots.size());
        }
        Boid** const list = boids.data();
        for (Node* node : slots) {
            list[count] = static_cast<Boid*>(node);
            count += node != nullptr;
        }
    }
    return count;
}

/// Cuts the list down to the boids within the search radius. \return their number
std::size_t keepNear(std::size_t count, const Boid& boid)
{
    const double reach = reachOf(boid.searchRadius);
    const Vec3 pos = boid.pos;
    Boid** const list = boids.data();
    double* const square = squares.data();
    std::size_t near = 0;
    for (std::size_t i = 0; i < count; ++i) {
        list[near] = list[i];
        square[near] = Vec3::SquaredDistance(list[near]->pos, pos);
        near += square[near] <= reach;
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
        Boid* other = boids[i];
        if (other->boidId == boid.boidId) {
            continue;
        }
        ++count;
        pos = pos + other->pos;
        vel = vel + other->vel;
        if (nearest.isNearer(squares[i])) {
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
    // Positive doubles are in the order of their bits, and their roots keep that order.
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
