#pragma once

#include "ReferenceMath.h"
#include "ReferenceRandom.h"

#include <vector>

/// One boid and its steering.
namespace reference {

struct Cell;

struct Boid {
    Triple pos, vel, orientation, flockCenter;
    bool bubble = false;
    int id = 0;
    int counter = 0;
    bool outOfBound = false;
    bool alive = true;
    Cell* cell = nullptr;
    Mat transform = identity();
    Mat sprite = identity(); ///< transform of its sprite

    /// Draws the two random numbers of a new boid.
    explicit Boid(ReferenceRandom& random);

    /// A boid that rests at a place.
    Boid(bool isBubble, const Triple& place) : pos(place), bubble(isBubble) {}

    void translate(const Triple& by)
    {
        transform = product(transform, translation(by.x, by.y, by.z));
    }
    void scale(Single s) { transform = product(transform, scaling(s, s, s)); }
    Triple place() const { return {transform[12], transform[13], transform[14]}; }

    /// Steers and moves by one step. \p sensors are the positions of the sensors.
    void move(const std::vector<const Boid*>& neighbours, const std::vector<Triple>& sensors,
              ReferenceRandom& random);

    /// The random push away from a boid at \p other for one of the modes (16, 120), (8, 40) and
    /// (4, 4); no change of \p avoid when that is not near.
    void pushAway(Triple& avoid, const Triple& other, int initial, int secondary,
                  ReferenceRandom& random) const;

    /// The 360 points of a bubble's outline, boid's frame.
    std::vector<std::array<Single, 2>> outline() const;

    void advanceOutline() { counter = (counter + 1) % 360 + 1; }
};

} // namespace reference
