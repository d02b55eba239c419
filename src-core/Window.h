#pragma once

#include "Render.h"

#include <FL/Fl_Gl_Window.H>

class Node;

namespace freetype {
struct font_data;
}

/// The top-level GL window: draws its scene when the toolkit repaints it, shows the frame rate in
/// its title, and turns mouse and keyboard into moves of the scene and UserEvents for its nodes.
///
/// Keys held while dragging, read as the toolkit's most recent key: v pans the root, z, x and c
/// turn the pivot about its own z, x and y axis by the vertical movement. The wheel zooms the root.
/// A right click, or space at the last position, sends a MOUSE_CLICK. q or Q hides the window.
///
/// A move that would leave a transform with numbers beyond the range of float is dropped, so that
/// no amount of input leads where no input leads back.
///
/// Hiding the window takes its GL context away, and with it the lists and textures of its scene's
/// nodes, unless another GL window of the process is shown meanwhile: contexts share them. A
/// minimised window keeps its context, goes on with its updates and draws nothing.
///
/// Everything runs on the toolkit's thread. draw and initGL need this window's GL context to be
/// current; the toolkit sees to that before it calls draw.
class Window : public Fl_Gl_Window {
public:
    int frames = 0;                          ///< frames drawn since the last sample
    float fps = 0;                           ///< frames drawn in the last whole second
    float offset[2] = {};                    ///< projection offset, see Camera::ortho2D
    float pscale = 1;                        ///< zoom factor of the view, 1 = unzoomed
    freetype::font_data* our_font = nullptr; ///< borrows; made ready together with the GL context
    int MOUSE[2] = {};                       ///< last pointer position, window pixels, top left 0
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

    /// Stops the frame-rate timer.
    ~Window() override;

    void draw() override;

    /// Handles one toolkit event and never passes it on to the base class.
    /// \return 1 when the event was used
    int handle(int event) override;

    /// Makes this window's GL context current and sets the camera up for the new size; the position
    /// is ignored. Deliberately not passed on to the base class: the widget's own geometry stays.
    /// Before there is a GL context nothing can be set up: a size that differs from the constructed
    /// one is then applied right after initGL.
    void resize(int x, int y, int w, int h) override;

    /// Hands \p x and \p y to the camera's ortho2D at the next GL initialisation.
    void setOffset(float x, float y);

    /// Borrows \p font.
    void setFont(freetype::font_data* font) { our_font = font; }

    void setDrawCallback(void (*callback)(Window*)) { drawcallback = callback; }

    int getWindowId() const { return windowId; }

    /// \return a pointer into this object
    Render* getRender() { return &render; }

    /// Sets up GL: extensions, fixed state, camera, zoom factor, font. Runs on the first draw and
    /// again for each new GL context. Needs: current GL context, a scene graph.
    /// Prints one line about what GL can do. Throws std::runtime_error when the font cannot be
    /// loaded (see freetype::font_data::init).
    void initGL();

    /// Updates the scene once, if this is window 1 and its GL context is valid.
    void idle();

private:
    struct Size {
        int w, h;
    };
    Size early;     ///< the last size given before there was a GL context
    char title[32]; ///< the toolkit keeps a pointer to it

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
