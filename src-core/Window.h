#pragma once

#include "GLTypes.h"
#include "Render.h"

#include <FL/Fl_Gl_Window.H>

class Node;

namespace freetype {
struct font_data;
}

/// The top-level GL window: draws its scene when FLTK repaints it, shows the frame rate in its
/// title, and turns mouse and keyboard input into moves of the scene and UserEvents for its nodes.
/// SceneWindow is one with a scene of its own.
///
/// A drag while a key is held moves the scene: v pans the root; z, x and c turn the pivot about its
/// own z, x and y axis by the vertical movement. (The key is FLTK's most recent one.) The wheel
/// zooms the root. A right click sends a MOUSE_CLICK to the nodes; so does space, at the last
/// position of the pointer. q or Q hides the window.
///
/// A zoom, pan or turn that would make the transform infinite, NaN or so small that it rounds to
/// nothing is ignored: further input could not undo it.
///
/// Hiding the window deletes its GL context, and with it the display lists and textures of its
/// scene's nodes, unless another GL window of the process is shown meanwhile: contexts share them.
/// A minimized window keeps its context, is updated, and draws nothing.
///
/// Everything runs on FLTK's one thread. draw and initGL need this window's GL context to be
/// current; FLTK makes it current before it calls draw.
///
/// The name is that of a type of Xlib: this header cannot be used together with X11/Xlib.h, FL/x.H
/// or GL/glx.h in one source file.
///
/// \par Example
/// \snippet obj-viewer.cpp window
class Window : public Fl_Gl_Window {
public:
    int frames = 0;                          ///< frames drawn since the last sample
    float fps = 0;                           ///< frames drawn in the last whole second
    float offset[2] = {};                    ///< projection offset, see Camera::ortho2D
    float pscale = 1;                        ///< zoom factor of the view, 1 = unzoomed
    freetype::font_data* our_font = nullptr; ///< borrows; loaded by initGL
    int MOUSE[2] = {};                       ///< last pointer position, pixels from the top left
    Render render;                           ///< the scene shown and the camera
    int windowId;                            ///< only window 1 updates its scene
    int height;                              ///< pixels, at construction
    int width;                               ///< pixels, at construction
    int origin[2];                           ///< x and y on the screen, at construction
    void (*drawcallback)(Window*) = nullptr; ///< called after each frame unless null

    /// Makes the window without showing it; prints "Loading...\n" and starts the frame-rate timer.
    /// \param id   1 for the window that updates the scene
    /// \param x,y  position on the screen, pixels
    /// \param w,h  size, pixels
    Window(int id, int x, int y, int w, int h);

    /// Stops the frame-rate timer and the timers of AppManager for this window.
    ~Window() override;

    /// Draws a frame: initGL if the GL context is new, clear, the scene, the title, drawcallback.
    /// Called by FLTK, which then swaps the buffers. Needs: current GL context, a scene graph.
    void draw() override;

    /// Handles one FLTK event.
    /// \return 1 when the event was used
    /// Fixed behavior: Window::handle does not pass on to the base class what it does not use.
    /// Pinned by WindowInputTest.EventsWithoutAMeaningAreLeftToOthers; do not correct.
    int handle(int event) override;

    /// Makes this window's GL context current and sets the camera up for the new size. Before there
    /// is a GL context nothing can be set up: where the widget's size differs from the constructed
    /// one, draw does it right after initGL. The widget's x, y, w and h follow in any case: FLTK
    /// computes the position of the pointer from them, and hands w and h back when a window manager
    /// puts the window into a frame.
    /// Fixed behavior: Window::resize does not pass the new size on to the base class, so that the
    /// GL context stays valid and initGL does not run again. Pinned by
    /// WindowTest.ANewSizeReachesTheCameraAndNotTheBaseClass; do not correct.
    void resize(int x, int y, int w, int h) override;

    /// Hands \p x and \p y to the camera's ortho2D at the next GL initialization.
    void setOffset(float x, float y);

    /// Borrows \p font.
    void setFont(freetype::font_data* font) { our_font = font; }

    /// Sets a function that draw calls after each frame; null: none.
    void setDrawCallback(void (*callback)(Window*)) { drawcallback = callback; }

    int getWindowId() const { return windowId; }

    /// \return a pointer into this object
    Render* getRender() { return &render; }

    /// Sets up GL: extensions, fixed state, camera, zoom factor, font. draw calls it for each new
    /// GL context. Needs: current GL context. Prints one line about what GL can do. Throws
    /// std::runtime_error when the font cannot be loaded (see freetype::font_data::init). Ends the
    /// process when the camera has no projection type (see Camera::ortho2D).
    void initGL();

    /// Updates the scene once, if this is window 1 and its GL context is valid.
    void idle();

private:
    char title[32]; ///< FLTK keeps a pointer to it

    void click(int x, int y);
    int drag();
    void pan(int dx, int dy);
    void turn(float x, float y, float z, int dy);
    void zoom(int dy);
    Node* rootNode();
};

/// Timer callback, once a second: samples the frame rate of the Window \p w (null: nothing), then
/// re-arms itself.
void timer(void* w);
