#pragma once

#include <functional>

/// One contender's drawing of the frozen scene, in the context that it needs.
struct Painter {
    const char* name;
    std::function<void()> prepare; ///< before each draw, not measured
    std::function<void()> draw;
};
