#pragma once

#include "WallLayout.h"

#include <vector>

/// What lies on the whole wall in a test pattern, in pixels of the wall, the origin at its lower
/// left corner. It goes on behind the bezels: a wrong gap or a swapped cable breaks it.
struct WallFigures {
    struct Point {
        float x;
        float y;
    };
    struct Circle {
        Point middle;
        float radius;
    };

    std::vector<Circle> circles; ///< the largest one, one half as large, and one over each seam
    float thickness = 0;         ///< of circles and diagonals

    /// \param layout  tiles in neighboring places of the grid have a seam
    explicit WallFigures(const WallLayout& layout);
};
