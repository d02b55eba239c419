#pragma once

#include "PixelRect.h"

/// Keeps the state of GL while something is drawn over a frame, and gives it back: attributes,
/// pixel storage and the three matrices. In between, colors and textures reach every pixel as they
/// are: no depth test, lighting, culling, blending or fog, a texture in place of the color.
/// Needs: current GL context from construction to destruction, no shader program in use.
class SavedState {
public:
    SavedState();
    SavedState(const SavedState&) = delete;
    SavedState& operator=(const SavedState&) = delete;
    ~SavedState();

    /// Sets what part of the window is drawn into, and in which frame.
    /// \param viewport     for glViewport
    /// \param width,height  of the frame: its origin is the viewport's lower left corner
    static void setFrame(const PixelRect& viewport, int width, int height);
};
