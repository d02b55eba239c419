#pragma once

#include "Stage.h"

#include <array>
#include <vector>

class Boid;
class SensorRep;

/// The scene at one moment, to be drawn again and again, and what a frame is made of. Matrices
/// are model to eye, 16 floats, and belong to the scene; outlines are x and y of one point after
/// the other.
class FrozenScene {
public:
    struct Sprite {
        const float* matrix;
        unsigned list;
    };
    struct Figure {
        const float* matrix;
        int frame; ///< of the body
        unsigned body;
        std::array<std::vector<float>, 3> tentacles;
    };
    struct Bubble {
        const float* matrix; ///< of the outline
        std::vector<float> outline;
        Sprite sprite;
    };

    // In the order of drawing: the water, then these.
    std::vector<Sprite> fish;
    std::vector<Figure> figures;
    std::vector<Bubble> bubbles;
    float projection[16];

    /// Plays the scene of the working directory for ten seconds, drawing it as the program does.
    /// Needs: current GL context.
    FrozenScene();

    /// Draws the frame by the project's own code. Needs: the context of the construction.
    void draw() { stage.draw(); }

    /// Before each draw: undoes what the last one has changed.
    void restore();

    Environment& environment() const { return *stage.water; }

private:
    void addBoid(Boid& boid);
    void addFigure(SensorRep& rep);

    struct Counter {
        int* place;
        int value;
    };
    Stage stage;
    std::vector<Counter> counters;
};
