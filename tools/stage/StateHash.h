#pragma once

#include <array>
#include <cstdint>

class Environment;
class Window;

/// The state of a scene as one number for each of its parts. Scenes of the same media and voice
/// with equal numbers have, short of a collision, the same positions, grid, random numbers, bodies
/// and view to the bit.
///
/// random, boids and figures come from sums, products, quotients and square roots alone: they are
/// the same from every compiler and on every processor. bodies and view also hold sines and
/// cosines, whose last bit is the C library's: it may differ between processors.
///
/// Left out: what is read back from GL (Node::worldmat) and what depends on the clock (the
/// frame rate).
struct StateHash {
    std::uint64_t random = 0;  ///< the generator behind rand()
    std::uint64_t boids = 0;   ///< fish and bubbles, their grid, the draws until the next bubbles
    std::uint64_t figures = 0; ///< the sensors, the step, and the records of that step
    std::uint64_t bodies = 0;  ///< sprites of the boids, bodies and tentacles of the figures
    std::uint64_t view = 0;    ///< transforms of root, pivot and water, zoom, pointer

    struct Part {
        const char* name;
        std::uint64_t value;
    };

    /// The parts, to print them or to name the first one that differs.
    std::array<Part, 5> parts() const;

    /// One number for all parts.
    std::uint64_t whole() const;

    bool operator==(const StateHash&) const = default;
};

/// Computes the numbers of a scene. Draws no random number, changes nothing and needs no GL
/// context. Takes about twenty microseconds. rand() must use the state that a process starts with,
/// or one of 128 bytes made with initstate.
/// \param water   the scene's environment, with figures that have a recording
/// \param window  shows the scene
StateHash hashOf(const Environment& water, const Window& window);
