#pragma once

#include "FreeType.h"
#include "SceneGraph.h"
#include "StateHash.h"
#include "Window.h"

#include <cstdint>

class Environment;
class MoCap;

/// The program's scene on a virtual clock: the same nodes, updates and draws as in the window, but
/// played as fast as somebody asks for them, without timers, sound device or display. The same seed
/// and the same calls give the same scene to the bit.
///
/// Time goes in steps of a fortieth of a second, the program's rate of updates and of redraws. The
/// recording follows the position that the voice would have at its last tick, 90 a second.
///
/// One at a time: random numbers and the count of draws between bubbles are the process's. A new
/// stage begins both anew.
///
/// Plays the media below the working directory, and ends the process as their readers do.
class Stage {
public:
    static constexpr int STEPS_PER_SECOND = 40;
    static constexpr int TICKS_PER_SECOND = 90;

    /// The voice that the figures follow, as far as a clock needs it.
    struct Voice {
        std::int64_t samples; ///< length; 0: the figures rest, as without a sound device
        int rate;             ///< samples per second
    };

    /// Never shown: it takes input by Window::handle, and it is the camera.
    Window window;
    SceneGraph graph;
    Environment* water; ///< lives until the process ends, as the program's does
    MoCap* recording;   ///< borrows; the environment's

    /// Builds the scene as the program does after srand(\p seed). Makes no GL call.
    /// \param width,height  of what is drawn, pixels
    Stage(int width, int height, unsigned seed, Voice voice);

    /// The nodes live until the process ends, lists and textures as long as their GL context.
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    /// One fortieth of a second: moves the recording to the time of the last tick and updates every
    /// node. The first call is that of time 0. Needs no GL context.
    void update();

    /// Draws one frame into the current framebuffer, as the window does; the program draws once
    /// before its first update and once after each. Needs: current GL context, the same one at each
    /// call; the first call sets it up.
    void draw() { window.draw(); }

    /// The state of the scene in numbers; see StateHash.
    StateHash hash() const { return hashOf(*water, window); }

    /// Where the voice is after so many ticks of the clock: the fraction played, as OggSound tells
    /// it; 0 after the end.
    static float voicePosition(Voice voice, std::int64_t tick);

private:
    Voice clockVoice;
    std::int64_t updates = 0;
    freetype::font_data font;
};
