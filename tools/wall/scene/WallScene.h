#pragma once

#include "FrameRecord.h"
#include "RampOverlay.h"
#include "StagePlay.h"
#include "SteeredRecording.h"
#include "WallLayout.h"
#include "WaterView.h"

#include <optional>

namespace wall {

/// The scene as one tile of a wall shows it. It is computed for the whole wall, and culled against
/// it, whatever the tile: ranks that get the same calls have the same state. Fit and ramps change
/// the picture alone.
class WallScene {
public:
    /// \param layout  borrows
    /// \param tile    borrows: the one that is drawn
    /// \param voice   of the virtual clock
    WallScene(const WallLayout& layout, const WallTile& tile, Stage::Voice voice);

    /// Begins anew as a process does that has just started. Needs: the tile's GL context, from the
    /// second call on. Prints what the scene prints. The scene's readers may end the process (see
    /// Stage).
    void begin(unsigned seed);

    /// Hands an event to the scene.
    void give(const InputEvent& event);

    /// One update, with this step of the recording.
    /// \param poses  where figures are led, in all updates of a scene; none: in no update
    void update(int step, const std::optional<Poses>& poses = std::nullopt);

    /// Draws the tile's part of the frame into the current framebuffer; what its cameras leave of
    /// the window is black. Afterwards GL's viewport is
    /// the whole wall, as the scene's input needs it. Needs: the tile's GL context, after begin.
    /// Throws std::runtime_error, in the first frame, when the font cannot be used.
    void draw();

    StateHash hash() const { return play.hash(); }

    /// That, and the numbers of children of the water and of nodes in view.
    State state() const;

    /// Steps of the recording.
    int numSteps() const;

    /// The step that the virtual clock has for the next update.
    int nextStep() const { return play.stage().nextStep(); }
    bool isVoiceOver() const { return play.stage().isVoiceOver(); }

    /// The recording in which figures can be led. The first call for a scene comes before its first
    /// update. Throws std::runtime_error for a recording without three figures.
    SteeredRecording& recording();

    /// How the whole wall shows the water now.
    WaterView view() const;

private:
    const WallLayout& wall;
    const WallTile& part;
    StagePlay play;
    std::optional<SteeredRecording> steered; ///< none before it is needed
    RampOverlay ramps;
};

/// Throws std::runtime_error when the current GL context cannot draw the tile: its viewport, which
/// is the whole wall's, is beyond GL's limits.
void checkLimits(const WallTile& tile);

} // namespace wall
