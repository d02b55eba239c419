#pragma once

#include "Place.h"

class UnderwaterScene;

/// Moves the view as it is told to, smoothly: each update does a quarter of what is left to do. The
/// middle of the picture stays within the water as it lies there unturned, and the zoom factor
/// within its limits: what would lead outside is left out.
class ViewMotion {
public:
    static constexpr double SMALLEST_ZOOM = 0.1;
    static constexpr double LARGEST_ZOOM = 20;

    /// Zooms in by so many steps of the wheel, below 0 out. What is in the middle of the picture
    /// stays there.
    void zoom(double steps);

    /// Moves the scene in the picture, by so many of its widths to the right and heights upwards.
    void move(double right, double up);

    /// Turns the scene: its front by so many degrees to the right, and upwards.
    void turn(double right, double up);

    /// One update's part of all that. Changes the transforms of the scene's root and pivot.
    /// \param pscale  the zoom factor by which the window slows down turns; follows a zoom
    /// \param aspect  width of the picture by its height
    void advance(UnderwaterScene& scene, float& pscale, double aspect);

private:
    double zooming = 0; ///< steps that are left, and those below
    Place moving;
    Place turning;
};
