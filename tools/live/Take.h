#pragma once

#include "Steering.h"

#include <array>
#include <string>
#include <vector>

class MoCap;

namespace live {

/// What the figures do in a showing, as a recording: the recording that they follow, with another
/// place wherever a figure was led. It has as many records, with their times, orientations and
/// third coordinates.
class Take {
public:
    /// \param recording  borrows
    explicit Take(const SteeredRecording& recording);

    /// What an update showed.
    /// \param step  of the recording, 0 .. its steps() - 1; of two updates of one step the later
    ///              counts
    void note(int step, const Poses& poses);

    /// Whether a figure was led.
    bool isLed() const { return led; }

    /// Lets the figures go back, from the latest update on, as fast as \p steering does it. To be
    /// called once, in the end: the recording then has no jump where the showing ended early.
    /// \param steering  as it was after the latest update
    void end(Steering steering, const WaterView& view);

    /// The text of the recording, as MoCap reads it. Between two updates figures go straight.
    /// \param times  has the times and orientations of the recording
    std::string text(const MoCap& times) const;

private:
    enum class Mark : unsigned char { NONE, AS_RECORDED, LED };
    struct Note {
        Mark mark = Mark::NONE;
        Vec3 record; ///< of a led figure
    };

    const SteeredRecording& recorded;
    std::array<std::vector<Note>, FIGURES> notes; ///< by step
    int latest = -1;
    bool led = false;

    std::vector<Vec3> recordsOf(std::size_t figure) const;
};

} // namespace live
