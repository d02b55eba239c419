#pragma once

#include "Boid.h"
#include "Vector.h"

#include <cmath>
#include <limits>

/// Finds the closest of several things, one by one, as comparing their distances in single
/// precision would. A root is taken only for a thing that is nearer by its square: of two squares
/// the greater one never has the lesser root, but two squares can have the same one.
class Closest {
public:
    static constexpr float FARTHEST = 100000.0f;

    /// \param square  of a distance, in double precision
    /// \return true when that distance is less than all before it, and than FARTHEST
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

    /// \return the least distance, FARTHEST for none
    float distance() const { return least; }

private:
    double leastSquare = std::numeric_limits<double>::infinity();
    float least = FARTHEST;
};

/// What steering needs to know of the boids around one, gathered one by one. The sums are formed in
/// the order in which they come.
struct Neighborhood {
    int count = 0;
    Vec3 pos;                ///< sum of the positions, world units
    Vec3 vel;                ///< sum of the velocities
    Boid* closest = nullptr; ///< borrows; the earlier one of two equally close
    Closest nearest;         ///< how close that is

    /// \param square  of its distance, in double precision
    void add(Boid* boid, double square)
    {
        ++count;
        pos = pos + boid->pos;
        vel = vel + boid->vel;
        if (nearest.isNearer(square)) {
            closest = boid;
        }
    }
};

/// \return the largest square of a distance that is not above \p radius once its root is rounded to
///         single precision; -1 when there is none
double largestSquareWithin(float radius);
