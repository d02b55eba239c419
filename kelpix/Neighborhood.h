#pragma once

#include "Vector.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

class Boid;
class Bucket;

/// Finds the closest of a sequence of candidates. Distances are compared in single precision; the
/// earlier candidate wins a tie. sqrt is monotonic: only a candidate with a smaller square can win,
/// so only for these the root is taken. Two different squares may round to the same distance.
class Closest {
public:
    /// \param square  of a distance, in double precision
    /// \return true when that distance is smaller than 100000 and than all distances before it
    bool isNearer(double square)
    {
        if (!(square < leastSquare)) {
            return false;
        }
        leastSquare = square;
        const auto distance = static_cast<float>(std::sqrt(square));
        if (!(distance < least)) {
            return false;
        }
        least = distance;
        return true;
    }

    /// \return the smallest distance; 100000 for none
    float distance() const { return least; }

    /// \return a square from which on nothing is nearer
    double square() const { return leastSquare; }

private:
    double leastSquare = std::numeric_limits<double>::infinity();
    float least = 100000.0f;
};

/// What a boid's steering needs to know of the boids around it.
struct Neighborhood {
    int count = 0;
    Vec3 pos;                ///< sum of their positions, in their order; world units
    Vec3 vel;                ///< sum of their velocities, in their order
    Boid* closest = nullptr; ///< borrows; the earlier one in a tie; null for none

    /// Sums up a list. Leaves closest null.
    static Neighborhood ofList(const std::vector<Boid*>& list);

    /// Finds the boids in \p cells that are within the search radius of \p boid and have another
    /// id: cell by cell, in the order of their slots. Empty slots are skipped. A boid whose
    /// distance is NaN is not within any radius.
    /// \param closeBy  how close the closest has to be, world units; when none of them is within
    ///                 this distance, closest is one of them or null
    /// \param run      the run of updates, see UpdateRun
    static Neighborhood inCells(const std::vector<Bucket*>& cells, const Boid& boid, float closeBy,
                                std::uint64_t run);
};

/// \return the largest double whose root, rounded to single precision, is at most \p radius; -1
///         for a negative radius and for NaN
double largestSquareWithin(float radius);
