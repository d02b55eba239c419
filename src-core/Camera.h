#pragma once

#include <vector>

/// A rectangle of a window with a projection offset, for tiled displays.
struct Viewport {
    float x, y, w, h; ///< pixels, origin at the bottom left
    float offset[2];  ///< fractions of the window, as Camera::ortho2D takes them
};

/// A position in a window, in pixels, or in the scene.
struct Point2 {
    float x, y;
};

/// Sets up GL's viewport, scissor box, projection and view transform. The view transform stays in
/// the modelview matrix from frame to frame: SceneGraph leaves that matrix as it found it.
///
/// \par Example
/// \snippet SceneWindow.cpp scene
class Camera {
public:
    std::vector<Viewport*> viewportList; ///< borrows; parts of a tiled display, not used here
    int projType = -1;                   ///< -1 undefined, 0 orthographic, else perspective
    int view[2] = {};                    ///< width and height of the GL viewport, pixels
    float eye[3] = {0, 0, 0};            ///< scene units; each set-up writes z: 1, orthographic 0
    float center[3] = {0, 0, -1};        ///< point looked at, scene units
    float up[3] = {0, 1, 0};

    void setProjType(int type) { projType = type; }

    /// The set-up for a new GL context. Perspective: 60 degrees vertically, planes at 0.01 and 100,
    /// eye at z = 1. Orthographic: -w..w, -h..h, -100..100, eye at z = 0. Then moves the scene by
    /// (-offset[0] * w, -offset[1] * h) scene units in the eye's frame.
    /// \param x,y     ignored
    /// \param w,h     window size in pixels; a height of 0 gives no usable projection
    /// \param offset  float[2], fractions of w and h
    /// Needs: current GL context. Leaves the modelview matrix selected.
    ///
    /// Fixed behavior: in Camera::ortho2D an undefined projection type prints "Please define camera
    /// projection type." on standard output and ends the process with status 0. Pinned by
    /// CameraDeathTest.AnUndefinedProjectionEndsTheProcessWithOneMessage; do not correct.
    void ortho2D(int x, int y, int w, int h, const float* offset);

    /// The set-up after a resize, as ortho2D. Needs: current GL context.
    ///
    /// Fixed behavior: Camera::reshape does not store the size in view, applies no offset (the
    /// first resize removes it), and takes an undefined type for perspective. Pinned by
    /// CameraTest.ReshapeSetsTheNewSizeUpAndKeepsTheOldOneInView,
    /// CameraTest.TheOffsetMovesTheSceneUntilTheNextReshape,
    /// CameraTest.AnUndefinedTypeCountsAsPerspectiveInReshape; do not correct.
    void reshape(int x, int y, int w, int h);

    /// \return pointers to the three float[3] fields
    float* getEye() { return eye; }
    float* getCenter() { return center; }
    float* getUp() { return up; }

    /// Maps a window position to the frame of a node, on the near plane.
    /// \param out    receives x and y in that frame; (0, 0) when the matrices cannot be inverted
    /// \param in     window position in pixels, origin at the top left; the top row of pixels,
    ///               y = 0, is GL's row h - 1. Example: in a window 600 high, y = 150 is row 449,
    ///               which the orthographic camera maps to 2 * 449 - 600 = 298.
    /// \param model  float[16], column-major: frame of the node to the frame of the current
    ///               modelview matrix
    /// \return \p out
    /// With the orthographic camera, that is the click's x and y at every depth. In perspective, x
    /// and y measured from the eye grow with the distance from it. The near plane is 0.01 from the
    /// eye and the plane z = 0 is 1 from it: multiply by 1 / 0.01 = 100 for a node at z = 0.
    /// Needs: current GL context with the modelview matrix selected. Restores: matrix stack.
    ///
    /// Fixed behavior: Camera::unproject subtracts the origin of the viewport, and GLU subtracts it
    /// again. Both set-ups put it at the lower left corner, where that makes no difference. Pinned
    /// by CameraTest.UnprojectTakesAViewportsOriginOffTwice; do not correct.
    Point2* unproject(Point2* out, const Point2* in, const float* model);

private:
    void setProjection(int w, int h);
    void setView();
};
