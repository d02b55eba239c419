#pragma once

#include "FramePace.h"
#include "FrameRecord.h"
#include "Steering.h"

namespace wall {

struct Options;
struct Rank;

/// On rank 0: what all ranks do in the next frame, and when. What moves the figures is decided
/// here alone, and reaches the ranks in Lead.
class Leader {
public:
    /// Both are borrowed. \p rank has been prepared.
    Leader(const Options& options, Rank& rank);

    /// Sleeps until the next frame is due; without sound, none has to be waited for.
    void awaitFrame();

    /// \param frame  the one to come, counted from 1
    Lead decide(std::uint32_t frame);

    /// To be called when a frame is shown: the voice begins with the scene.
    /// \param beginsScene  it is the first one of the scene
    void shown(bool beginsScene);

private:
    const Options& options;
    Rank& first;
    FramePace pace;
    Steering steering;
    bool isSteeringNew = false; ///< for the scene that the next frame begins
    unsigned beginnings = 0;    ///< of scenes whose first frame has been shown
    unsigned seed;              ///< of the scene that begins next, less the beginnings before it

    bool isVoiceOver() const;
    void followMessages(Lead& lead);
};

} // namespace wall
