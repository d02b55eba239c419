#pragma once

#include "PlayedScene.h"
#include "Script.h"

class Stage;

namespace record {

/// Plays a scene step by step, with the acts of a script.
class Player final : public PlayedScene {
public:
    /// Borrows both.
    Player(Stage& stage, const Script& script) : scene(stage), acts(script.acts) {}

    /// One step of the scene: the script's acts, an update, a draw into the current framebuffer.
    /// Needs: current GL context, the same one at each call.
    void playStep() override;

    StateHash hash() const override;

private:
    Stage& scene;
    const std::vector<Act>& acts;
    std::size_t next = 0;  ///< the first act that was not done yet
    std::int64_t step = 0; ///< to be played

    void perform(const Input& input);
    void perform(const Zoom& zoom);
    void perform(const Pan& pan);
};

} // namespace record
