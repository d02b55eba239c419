#pragma once

#include "ReferenceBoid.h"
#include "ReferenceSensor.h"

#include <memory>
#include <variant>
#include <vector>

/// The whole scene once more, in plain code: the world with its hundred fish, three sensors and
/// bubbles below a root and a pivot. It is built, updated and drawn in the same steps as the real
/// one, and draws the same random numbers; what it does not do is draw pictures.
namespace reference {

/// One cell of the grid.
struct Cell {
    std::vector<const Boid*> slots;
    std::vector<int> vacated; ///< the slot vacated last is at the end

    void add(const Boid* boid);
    void remove(int id);
};

/// The positions of three recorded sensors, one per step.
using Recording = std::array<std::vector<Triple>, 3>;

class Scene {
public:
    using Child = std::variant<std::unique_ptr<Boid>, std::unique_ptr<Sensor>>;

    ReferenceRandom random;
    Recording recording;
    Mat root = identity();
    Mat pivot = identity();
    Mat world = identity();
    std::vector<Child> children;
    std::array<Cell, 100> cells; ///< row after row
    int sinceEmission = 0;
    int visibleNodes = 0; ///< nodes that the last draw found visible

    /// What the last draw did, for tests that want to see something happen.
    int culledBoids = 0;
    int reapedBoids = 0;
    int emittedBubbles = 0;

    /// Builds the scene as it is after srand(\p seed).
    Scene(unsigned seed, const Recording& recorded);

    /// One tick with the playback at \p step.
    void update(int step);

    /// One frame. Needs: a current GL context with the camera's matrices, whose modelview stack
    /// multiplies the transforms; draws nothing.
    void draw();

private:
    void addFish(int id);
    void emitBubble(Single x);
    void update(Boid& boid);
    Cell* cellAt(Single x, Single y);
    std::vector<const Boid*> neighboursOf(const Boid& boid) const;
    std::vector<Triple> sensorPositions() const;
    void drawWorld();
    bool draw(Boid& boid);
};

} // namespace reference
