#pragma once

#include "Rates.h"
#include "SteeredRecording.h"

class WaterView;

/// Leads the figures from outside. A figure that is led goes to where it was sent, smoothly and no
/// faster than FASTEST; one that hears nothing for PATIENCE updates, or is released, goes back to
/// where the recording has it, in the same way, and follows it from there. The same calls give the
/// same places.
class Steering {
public:
    /// The longest way of a led figure in an update, water units: a longer one makes tentacles long
    /// and jagged.
    static constexpr double FASTEST = 0.012;

    /// Updates without a message after which a figure goes back.
    static constexpr int PATIENCE = 2 * Rates::UPDATES;

    /// A message: the figure goes to this place of the picture, 0..1 from left to right and from
    /// bottom to top. A number outside of that, or a figure that does not exist, is no message.
    void lead(int figure, double x, double y);

    /// The figure goes back.
    void release(int figure);

    /// The places of the figures in the next update. The first call finds them where the recording
    /// has them. Each place is one of single precision.
    /// \param step  of the recording in that update, 0 .. its steps() - 1
    /// \param view  in that update: a led figure goes to where its place is seen now
    Poses next(const SteeredRecording& recording, int step, const WaterView& view);

    /// Whether a figure is on its way to where it was sent, or there.
    bool isLed(int figure) const;

private:
    enum class Mode { FOLLOWS, LED, RETURNS };

    struct Figure {
        Mode mode = Mode::FOLLOWS;
        Place sentTo;    ///< in the picture
        int silence = 0; ///< updates since it was sent there
        Place recorded;  ///< where the recording had it in the last update
        Place at;        ///< where it was in the last update
        Place speed;     ///< its way in the last update
    };

    std::array<Figure, FIGURES> figures;
    bool begun = false;

    static void goTo(Figure& figure, Place goal, Place goalSpeed);
};
