#pragma once

#include "FreeType.h"
#include "Rates.h"
#include "StateHash.h"
#include "UnderwaterScene.h"
#include "Window.h"

#include <cstdint>

class MoCap;

/// The program's scene on a virtual clock: the same nodes, updates and draws as in the window, but
/// played as fast as the caller asks for them, without timers, sound device or display. The same
/// seed and the same calls give the same scene to the bit.
///
/// Time goes in steps: an update and the redraw after it, which the program's timers do at the same
/// rate (Rates). The step of the recording is that of the latest tick of the program's
/// motion-capture clock (Rates::CLOCK_TICKS), for a voice that plays in virtual time.
///
/// Use one stage at a time: the random numbers and the count of draws between bubbles belong to the
/// process, and a new stage starts both anew.
///
/// Plays the media below the working directory, and ends the process where their readers do.
class Stage {
public:
    static constexpr int STEPS_PER_SECOND = Rates::UPDATES;
    static_assert(Rates::UPDATES == Rates::REDRAWS, "a step is one update and one redraw");
    static constexpr int TICKS_PER_SECOND = Rates::CLOCK_TICKS;

    /// What the clock needs to know of the voice.
    struct Voice {
        std::int64_t samples; ///< length; 0: the figures rest, as without a sound device
        int rate;             ///< samples per second
    };

    UnderwaterScene scene;
    Environment* water; ///< the scene's
    MoCap* recording;   ///< borrows; the environment's
    Window window;      ///< never shown: it holds the camera, and takes input by Window::handle

    /// Builds the scene as the program does after srand(\p seed). Makes no GL call.
    /// \param width,height  of what is drawn, pixels
    Stage(int width, int height, unsigned seed, Voice voice);

    /// Frees neither nodes nor GL objects: nodes live until the process ends unless freeNodes was
    /// called, display lists and textures as long as their GL context.
    ~Stage();
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    /// One step: sets the step of the recording and updates every node. The first call is that of
    /// time 0. Needs no GL context.
    void update() { update(nextStep()); }

    /// The same with a step of the recording that another clock has given.
    void update(int step);

    /// The step of the recording that the virtual clock has for the next update.
    int nextStep() const;

    /// Whether the next update finds the voice at its end.
    bool isVoiceOver() const;

    /// Draws one frame into the current framebuffer, as the window does; the program draws once
    /// before its first update and once after each. Needs: current GL context, the same one at each
    /// call; the first call sets it up.
    void draw() { window.draw(); }

    /// Frees the nodes, the recording, and the pixels of the textures. Afterwards the stage can
    /// only be destroyed. Needs: the GL context, if a frame was drawn.
    void freeNodes();

    /// The state of the scene in numbers; see StateHash.
    StateHash hash() const { return hashOf(*water, window); }

    /// The fraction of the voice that is played after so many ticks, as
    /// OggSound::getPlaybackOffset gives it; 0 after the end.
    static float voicePosition(Voice voice, std::int64_t tick);

private:
    Voice clockVoice;
    std::int64_t updates = 0;
    freetype::font_data font;

    /// Of the motion-capture clock, the latest at the next update.
    std::int64_t nextTick() const { return updates * TICKS_PER_SECOND / STEPS_PER_SECOND; }
};
