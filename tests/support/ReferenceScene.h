#pragma once

#include "Reference.h"

namespace reference {

/// The whole scene in plain code: the world with its hundred fish, three sensors and bubbles, below
/// a root and a pivot. It is built, updated and drawn in the same steps as the real one, and draws
/// the same random numbers; only it issues no drawing commands.
class Scene : public World {
public:
    Mat root = identity();
    Mat pivot = identity();
    Mat world = identity();
    int sinceEmission = 0;
    int visibleNodes = 0; ///< nodes that the last draw found visible

    /// What the last draw did, for tests that want to see something happen.
    int culledBoids = 0;
    int reapedBoids = 0;
    int emittedBubbles = 0;

    /// Builds the scene as it is after srand(\p seed).
    Scene(unsigned seed, const Recording& recorded);

    /// One frame. Needs: a current GL context with the camera's matrices, whose modelview stack
    /// multiplies the transforms; draws nothing.
    void draw();

private:
    void addFish(int id);
    void emitBubble(Single x);
    void drawWorld();
    bool draw(Boid& boid);
};

} // namespace reference
