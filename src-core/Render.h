#pragma once

#include "Camera.h"

class SceneGraph;

/// What a window shows: a scene graph, and the camera that looks at it.
class Render {
public:
    SceneGraph* sg = nullptr; ///< borrows; set it before the first frame, it is not checked
    Camera camera;

    /// Draws the scene graph. Needs: current GL context, a scene graph.
    void frame();

    /// Updates the scene graph once. Needs: a scene graph.
    void idleFrame();

    SceneGraph* getSG() { return sg; }
    void setSG(SceneGraph* graph) { sg = graph; }

    /// \return a pointer into this object
    Camera* getCamera() { return &camera; }
};
