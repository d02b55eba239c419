#pragma once

#include "RandomNumbers.h"
#include "SceneInput.h"
#include "Stage.h"

#include <memory>
#include <vector>

/// The scene in a GL context that outlives it: it can begin anew there. Its random numbers are its
/// own. The same seed and the same calls give the same scene to the bit, however often it began.
class StagePlay {
public:
    /// \param voice  of the virtual clock
    explicit StagePlay(Stage::Voice voice) : clockVoice(voice) {}

    /// Begins anew as a process does that has just started. Frees the scene before, with all
    /// display lists and textures of the GL context but those lists of the figures' bodies, which
    /// all scenes have in common: they take most of the time of a beginning, and some drivers keep
    /// memory of lists that were deleted. Needs: the GL context, from the second call on. Prints
    /// what the scene prints.
    /// \param width,height  of what is drawn, pixels
    void begin(int width, int height, unsigned seed);

    /// Hands an event to the scene; FLTK's current event stays what it is.
    void give(const SceneInput& input);

    /// One update, with this step of the recording.
    void update(int step);

    /// Draws a frame into the current framebuffer. Needs: the GL context.
    void draw();

    StateHash hash() const;

    /// \return the scene, once it has begun. What draws from rand() in it goes through this class,
    ///         or happens while useNumbers' result lives
    Stage& stage() const { return *scene; }

    /// While the result lives, rand() uses the scene's random numbers.
    RandomNumbers::Use useNumbers() const { return RandomNumbers::Use(numbers); }

private:
    /// The display lists of a figure (SensorRep).
    struct Body {
        unsigned square;
        std::vector<unsigned> frames;
    };

    Stage::Voice clockVoice;
    mutable RandomNumbers numbers;
    std::unique_ptr<Stage> scene;
    bool isDrawn = false;     ///< the scene has been, once at least
    std::vector<Body> bodies; ///< of the first scene in the GL context, for those after it

    void end();
    void noteBodies();
    void giveBodies();
};
