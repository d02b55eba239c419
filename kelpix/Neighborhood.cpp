#include "Neighborhood.h"

#include "Boid.h"
#include "BucketIndex.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

// Four numbers at a time. These are the vector types of g++ and clang: each element is computed and
// rounded on its own, like a single number. A comparison gives -1 for true and 0 for false.
using Four = float __attribute__((vector_size(16)));
using FourInts = std::int32_t __attribute__((vector_size(16)));
using TwoAddresses = std::intptr_t __attribute__((vector_size(2 * sizeof(std::intptr_t))));

template<typename Vector, typename Element>
Vector load(const Element* elements)
{
    Vector vector;
    std::memcpy(&vector, elements, sizeof vector);
    return vector;
}

Four four(float number)
{
    return Four{number, number, number, number};
}

FourInts four(int number)
{
    return FourInts{number, number, number, number};
}

/// \return bit i is set where element i is true
unsigned bitsOf(FourInts truth)
{
#ifdef __SSE__
    return static_cast<unsigned>(__builtin_ia32_movmskps(std::bit_cast<Four>(truth)));
#else
    const FourInts bits = truth & FourInts{1, 2, 4, 8};
    return static_cast<unsigned>(bits[0] | bits[1] | bits[2] | bits[3]);
#endif
}

// Squares of distances are computed in single precision first. Only where their error could matter
// they are computed in double precision, too.

/// More than the relative error of such a square and of a bound for it: four roundings of 2^-24.
constexpr double ERROR = 1.0 / (1 << 21);

/// \return no square up to \p square comes out as more than this
float upperBound(double square)
{
    using Limits = std::numeric_limits<float>;
    // Below the normal numbers the relative error may be any.
    const double bound = std::max(square * (1 + ERROR), static_cast<double>(Limits::min()));
    return bound < static_cast<double>(Limits::max()) ? static_cast<float>(bound)
                                                      : Limits::infinity();
}

/// The squares of a boid's radii.
struct Reach {
    double exact = -1;  ///< see largestSquareWithin
    float inner = -1;   ///< what comes out as less than this is within the search radius
    float outer = -1;   ///< what comes out as more than this is not
    float closeBy = -1; ///< what comes out as more than this is not close by

    Reach() = default;
    Reach(float radius, float smaller) : exact(largestSquareWithin(radius))
    {
        if (exact >= 0) {
            outer = upperBound(exact);
        }
        if (exact > 1e-30 && exact < 1e30) { // where the range of a float does not matter
            inner = static_cast<float>(exact * (1 - ERROR));
        }
        if (smaller >= 0) {
            closeBy = upperBound(largestSquareWithin(smaller));
        }
    }
};

/// The last result is kept: all boids have the same radii.
const Reach& reachOf(float radius, float closeBy)
{
    static float knownRadius = -1;
    static float knownCloseBy = -1;
    static Reach reach;
    if (knownRadius != radius || knownCloseBy != closeBy) {
        knownRadius = radius;
        knownCloseBy = closeBy;
        reach = Reach(radius, closeBy);
    }
    return reach;
}

/// Which lanes of a group have their bit set.
struct alignas(64) Lanes {
    std::intptr_t offset[4]; ///< of each of them in its order, in bytes
    std::size_t count;
};

constexpr std::array<Lanes, 16> LANES_OF = [] {
    std::array<Lanes, 16> table{};
    for (unsigned bits = 0; bits < 16; ++bits) {
        for (unsigned lane = 0; lane < 4; ++lane) {
            if ((bits >> lane & 1) != 0) {
                table[bits].offset[table[bits].count++] = lane * sizeof(float);
            }
        }
    }
    return table;
}();

/// Where the numbers of a boid are, from its x on, in floats.
constexpr std::size_t X = 0;
constexpr std::size_t Y = offsetof(PackedBoids::Group, y) / sizeof(float);
constexpr std::size_t Z = offsetof(PackedBoids::Group, z) / sizeof(float);
constexpr std::size_t VX = offsetof(PackedBoids::Group, vx) / sizeof(float);
constexpr std::size_t VY = offsetof(PackedBoids::Group, vy) / sizeof(float);
constexpr std::size_t VZ = offsetof(PackedBoids::Group, vz) / sizeof(float);

/// Scratch memory of a search: for each boid found, where its x is. Kept from call to call, so that
/// a search allocates nothing; only the first entries are in use.
std::vector<const float*> found;

/// A search for the neighbors of one boid.
class Search {
public:
    Search(const Boid& boid, const Reach& reach)
        : pos(boid.pos), reachSquare(reach.exact), x(four(pos.x)), y(four(pos.y)), z(four(pos.z)),
          inner(four(reach.inner)), outer(four(reach.outer)), id(four(boid.boidId)),
          notFarther(four(reach.closeBy))
    {
    }

    /// Finds the neighbors in a cell.
    void searchIn(const std::vector<PackedBoids::Group>& groups, Node* const* slots);

    Neighborhood result() const;

private:
    unsigned lookCloser(unsigned near, const PackedBoids::Group& group, Node* const* slots);

    const Vec3 pos;
    const double reachSquare;
    const Four x, y, z, inner, outer;
    const FourInts id;
    Four notFarther; ///< what comes out as more than this is not the closest
    Closest nearest;
    Boid* closest = nullptr;
    std::size_t count = 0;
};

void Search::searchIn(const std::vector<PackedBoids::Group>& groups, Node* const* slots)
{
    if (found.size() < count + 4 * groups.size()) {
        found.resize(count + 4 * groups.size());
    }
    const float** end = found.data() + count;
    for (const PackedBoids::Group& group : groups) {
        const Four dx = load<Four>(group.x) - x;
        const Four dy = load<Four>(group.y) - y;
        const Four dz = load<Four>(group.z) - z;
        const Four square = dx * dx + dy * dy + dz * dz;
        const FourInts near = (square <= outer) & ~(load<FourInts>(group.id) == id);
        // To be decided in double precision: which is the closest, and whether what is at about the
        // search radius is within it.
        const FourInts unsure = near & ((square <= notFarther) | ~(square < inner));
        unsigned bits = bitsOf(near);
        if (bitsOf(unsure) != 0) {
            bits = lookCloser(bits, group, slots);
        }
        // Those that are near are listed without a branch, which the processor could not predict:
        // four are written, and the end advances by as many as there are.
        const Lanes& lanes = LANES_OF[bits];
        const TwoAddresses start = TwoAddresses{} + std::bit_cast<std::intptr_t>(&group.x[0]);
        const TwoAddresses first = start + load<TwoAddresses>(lanes.offset);
        const TwoAddresses second = start + load<TwoAddresses>(lanes.offset + 2);
        std::memcpy(end, &first, sizeof first);
        std::memcpy(end + 2, &second, sizeof second);
        end += lanes.count;
        slots += 4;
    }
    count = static_cast<std::size_t>(end - found.data());
}

/// Decides in double precision what single precision could not.
/// \param near  the lanes that may be near
/// \return the lanes that are
unsigned Search::lookCloser(unsigned near, const PackedBoids::Group& group, Node* const* slots)
{
    for (unsigned left = near; left != 0; left &= left - 1) {
        const auto lane = static_cast<unsigned>(std::countr_zero(left));
        const Vec3 other(group.x[lane], group.y[lane], group.z[lane]);
        const double square = Vec3::SquaredDistance(other, pos);
        if (!(square <= reachSquare)) {
            near &= ~(1u << lane);
        } else if (nearest.isNearer(square)) {
            closest = static_cast<Boid*>(slots[lane]);
        }
    }
    notFarther = four(std::min(notFarther[0], upperBound(nearest.square())));
    return near;
}

Neighborhood Search::result() const
{
    Vec3 sumOfPos;
    Vec3 sumOfVel;
    for (std::size_t i = 0; i < count; ++i) {
        const float* const other = found[i];
        sumOfPos = sumOfPos + Vec3(other[X], other[Y], other[Z]);
        sumOfVel = sumOfVel + Vec3(other[VX], other[VY], other[VZ]);
    }
    return {static_cast<int>(count), sumOfPos, sumOfVel, closest};
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

Neighborhood Neighborhood::inCells(const std::vector<Bucket*>& cells, const Boid& boid,
                                   float closeBy, std::uint64_t run)
{
    Search search(boid, reachOf(boid.searchRadius, closeBy));
    for (Bucket* cell : cells) {
        search.searchIn(cell->packedIn(run).all(), cell->boidList.data());
    }
    return search.result();
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
