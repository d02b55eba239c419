#pragma once

#include "Command.h"
#include "StagePlay.h"
#include "Steering.h"
#include "ViewMotion.h"
#include "WaterView.h"

#include <optional>

namespace live {

/// The scene whose figures and view follow messages. The same seed, messages and steps give the
/// same scene to the bit.
class LiveScene {
public:
    LiveScene() : play(Stage::Voice{}) {}

    /// Begins anew: the scene, the figures and the view. Throws std::runtime_error for a recording
    /// without three figures. Prints what the scene prints, and ends the process where its readers
    /// do. Needs: the GL context, from the second call on.
    void begin(int width, int height, unsigned seed);

    /// The picture has another size. Needs: the GL context.
    void resize(int width, int height);

    /// Does what a message asks for, at once or from the next update on; SEED and RESTART are left
    /// to the caller.
    void obey(const osc::Command& command);

    /// Hands an event of a window as large as the picture to the scene.
    void give(const SceneInput& input) { play.give(input); }

    /// One update.
    /// \param step  of the recording; one that it does not have counts as the nearest one
    void update(int step);

    /// Draws a frame into the current framebuffer. Needs: the GL context.
    void draw() { play.draw(); }

    StateHash hash() const { return play.hash(); }

    /// Steps of the recording, as its clock counts them.
    int numSteps() const;

    /// The step and the places of the figures in the latest update.
    int step() const { return lastStep; }
    const Poses& poses() const { return lastPoses; }

    /// Where a figure is drawn, in the picture: 0..1 from left to right and from bottom to top.
    /// \return none when it is behind the eye
    std::optional<Place> seenAt(int figure) const;

    const Stage& stage() const { return play.stage(); }
    const Steering& figures() const { return steering; }
    const SteeredRecording& recorded() const { return *recording; }
    WaterView view() const;

private:
    StagePlay play;
    std::optional<SteeredRecording> recording;
    Steering steering;
    ViewMotion motion;
    int lastStep = 0;
    Poses lastPoses;

    double aspect() const;
};

} // namespace live
