#pragma once

#include "PixelRect.h"
#include "TileConfig.h"

#include <array>
#include <string>

/// What the cameras of one window are together. A rank draws once a frame, since drawing changes
/// the scene; so several cameras have to be one that is divided.
struct WindowCameras {
    PixelRect drawn;                  ///< the part of the window that they fill; origin as GL's
    std::array<float, 2> offset = {}; ///< theirs, fractions of the window, to the right and up
    std::string problem;              ///< empty = they can be drawn as one
};

/// Joins the cameras of a window: none is one over the whole window; several have to fill it.
/// \param window  with a Location of 1 to WallLayout::LARGEST_TILE pixels a side
WindowCameras joinCameras(const WindowEntity& window);
