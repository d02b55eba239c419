#pragma once

#include "Script.h"

class Stage;

namespace record {

/// Plays a scene step by step, with the inputs of a script.
class Player {
public:
    /// Borrows both.
    Player(Stage& stage, const Script& script) : scene(stage), inputs(script.inputs) {}

    /// One step of the scene: the script's inputs, an update, a draw into the current framebuffer.
    /// Needs: current GL context, the same one at each call.
    void playStep();

private:
    Stage& scene;
    const std::vector<Input>& inputs;
    std::size_t next = 0;  ///< the first input that was not given yet
    std::int64_t step = 0; ///< to be played

    void give(const Input& input);
};

} // namespace record
