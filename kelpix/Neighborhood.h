#pragma once

#include "Vector.h"

#include <cmath>
#include <limits>
#include <vector>

class Boid;
class Bucket;

/// Finds the closest of several things, one by one, as comparing their distances in single
/// precision would. A root is taken only for a thing that is nearer by its square: of two squares
/// the greater one never has the lesser root, but two squares can have the same one.
class Closest {
public:
    /// \param square  of a distance, in double precision
    /// \return true when that distance is less than all before it, and than 100000
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

    /// \return the least distance; 100000 for none
    float distance() const { return least; }

private:
    double leastSquare = std::numeric_limits<double>::infinity();
    float least = 100000.0f;
};

/// What a boid's steering needs to know of the boids around it.
struct Neighborhood {
    int count = 0;
    Vec3 pos;                ///< sum of their positions, in their order; world units
    Vec3 vel;                ///< sum of their velocities, in their order
    Boid* closest = nullptr; ///< borrows; the earlier one of two equally close

    /// Sums up a list, and looks for no closest one.
    static Neighborhood ofList(const std::vector<Boid*>& list);

    /// Finds the boids in some cells that are within the search radius of \p boid and have another
    /// id: cell by cell, in the order of their slots. Empty slots are passed over, and a boid whose
    /// distance is not a number is not within any radius.
    static Neighborhood inCells(const std::vector<Bucket*>& cells, const Boid& boid);
};

/// \return the largest square of a distance that is not above \p radius once its root is rounded to
///         single precision; -1 when there is none
double largestSquareWithin(float radius);
