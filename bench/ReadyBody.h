#pragma once

#include "LiteralBody.h"

#include <array>
#include <vector>

namespace bench {

/// All frames of a figure's body, their points computed beforehand, so that making display lists of
/// them costs the GL calls alone.
struct ReadyBody {
    static constexpr int FRAMES = 240;
    static constexpr int SEGMENTS = literal::BODY_SEGMENTS;
    static constexpr int ROWS = 16;
    static constexpr int COLUMNS = 17;

    using Segment = literal::Segment<float>;
    struct Frame {
        std::array<Segment, SEGMENTS> segments;
        float points[ROWS][COLUMNS][3];
    };
    std::vector<Frame> frames;

    /// Computes them step by step, each point from its angles.
    static ReadyBody compute();

    /// Makes the display lists. Needs: current GL context. \return the first of FRAMES names
    unsigned compile() const;
};

} // namespace bench
