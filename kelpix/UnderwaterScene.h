#pragma once

#include "SceneGraph.h"

class Environment;
class OggSound;
class PivotNode;
class RootNode;
class Window;

namespace freetype {
struct font_data;
}

/// The scene as it is assembled: root (zoom and pan), pivot (turn) and water, and how a window
/// shows them. The program and everything else that plays the scene assemble it here.
///
/// Owns the graph, not the nodes: they live until the process ends.
class UnderwaterScene {
public:
    SceneGraph graph;
    RootNode* root;               ///< named "root"
    PivotNode* pivot;             ///< named "pivot", the root's child after addWater
    Environment* water = nullptr; ///< named "water", the pivot's child after addWater

    /// Makes root and pivot. The graph stays empty until addWater.
    UnderwaterScene();
    UnderwaterScene(const UnderwaterScene&) = delete;
    UnderwaterScene& operator=(const UnderwaterScene&) = delete;

    /// Builds the environment from the media in the working directory (see Environment: it draws
    /// rand(), and can end the process), centers it in the view, and completes tree and graph. Call
    /// it once. Makes no GL call.
    /// \param voice  borrows; the clock of the recording, null to leave the recording at its start
    void addWater(OggSound* voice);

    /// Prepares a window that is not shown yet: a camera with perspective, a border, the font, and
    /// this scene.
    /// \param window        borrows the font and this object
    /// \param font          read by the window when its GL context is made
    /// \param drawCallback  called after each frame; null: nothing is called
    void showIn(Window& window, freetype::font_data& font, void (*drawCallback)(Window*));
};
