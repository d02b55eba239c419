#pragma once

#include "PivotNode.h"
#include "Rates.h"
#include "RootNode.h"
#include "SceneGraph.h"
#include "Window.h"

/// A window with a scene of its own: root, pivot, scene graph and camera are put together already.
/// Attach nodes to pivot, or to root those that the mouse is not to turn, then call run.
///
/// \par Example
/// \snippet hello-node.cpp scene window
class SceneWindow : public Window {
public:
    RootNode root;    ///< the mouse zooms and pans it
    PivotNode pivot;  ///< the mouse turns it; the first child of root
    SceneGraph scene; ///< of root and pivot

    /// Makes a window of id 1 with a perspective camera, without showing it.
    /// \param w,h  size, pixels
    SceneWindow(int w, int h);

    /// Shows the window, updates and draws its scene, and returns when the window is hidden.
    /// \param updates  per second, see AppManager::addTimeouts
    /// \param frames   per second
    /// \return false when the display cannot show the window
    bool run(float updates = Rates::UPDATES, float frames = Rates::REDRAWS);
};
