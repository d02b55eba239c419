#pragma once

#include "GLTypes.h"
#include "Ramp.h"

/// Multiplies what is drawn in a tile's window by the tile's ramps and gain.
class RampOverlay {
public:
    /// Makes no GL call.
    explicit RampOverlay(const WallTile& tile);

    /// \return whether the tile has ramps or a gain; without, draw does nothing
    bool isNeeded() const { return needed_; }

    /// Draws over the whole window, after the scene. The first call makes a texture. Needs: current
    /// GL context, the same one at each call, no shader program in use. Restores: everything.
    void draw();

    /// Deletes the texture; the next draw makes another one. Needs: the GL context of draw,
    /// current.
    void clean();

private:
    Ramp::Factors factors_;
    int width_; ///< of the window
    int height_;
    bool needed_;
    GLuint texture_ = 0;

    void makeTexture();
    void drawParts() const;
};
