#pragma once

#include "Time.h"

namespace record {

/// The step of the scene that a picture at this time shows: the latest one that is drawn by then.
std::int64_t stepShownAt(Microseconds time);

/// The first step of the scene at this time or after it: the one that meets what happens then.
std::int64_t stepAfter(Microseconds time);

/// Which step of the scene each frame of a film shows. The scene always advances in its own steps;
/// a film with more frames shows some of them repeatedly, one with fewer leaves some out.
class Schedule {
public:
    /// \param start   the time of the first frame
    /// \param length  of the film; the last frame may reach beyond it by less than a frame
    /// \param fps     frames per second
    Schedule(Microseconds start, Microseconds length, int fps);

    std::int64_t frames() const { return count; }

    /// The step that a frame shows, frames counted from 0.
    std::int64_t stepOf(std::int64_t frame) const;

    /// The frames that show a step; 0 for a step that is left out.
    std::int64_t framesOf(std::int64_t step) const;

    /// Ends the film before the first frame that would show this step or a later one.
    void endBefore(std::int64_t step);

private:
    Microseconds start;
    std::int64_t fps;
    std::int64_t count;

    std::int64_t firstFrameFrom(std::int64_t step) const;
};

} // namespace record
