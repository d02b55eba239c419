#pragma once

#include "StateHash.h"

namespace record {

/// A scene that is recorded.
class PlayedScene {
public:
    /// One step: the input, an update, a draw into the current framebuffer. Needs: current GL
    /// context, the same one at each call.
    virtual void playStep() = 0;

    /// The state after the last step.
    virtual StateHash hash() const = 0;

protected:
    PlayedScene() = default;
    PlayedScene(const PlayedScene&) = default;
    PlayedScene& operator=(const PlayedScene&) = default;
    ~PlayedScene() = default;
};

} // namespace record
