#pragma once

/// When the frames of a show are due: evenly, and after a late one evenly from there, so that no
/// frame makes up for another.
class FramePace {
public:
    /// \param rate  frames per second
    explicit FramePace(double rate) : period(1 / rate) {}

    /// \param now  seconds
    /// \return how many seconds from now the next frame is due; 0: it is
    double untilNext(double now)
    {
        if (!started || now > due + period) {
            started = true;
            due = now;
        }
        return due > now ? due - now : 0;
    }

    /// The frame has begun.
    void begin() { due += period; }

private:
    double period;
    double due = 0;
    bool started = false;
};
