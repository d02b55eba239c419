#pragma once

#include <FL/Fl_Gl_Window.H>
#include <functional>

struct SceneInput;

namespace live {

/// The window of a scene that may begin anew in it: its GL context lives as long as it is open. It
/// draws only when it is told to. q and closing it close it; all other input goes to the scene.
class LiveWindow : public Fl_Gl_Window {
public:
    /// \param onInput  gets mouse and keyboard, the pointer in pixels of the window
    LiveWindow(int w, int h, std::function<void(const SceneInput&)> onInput);

    /// Shows it, and makes its GL context current. Throws std::runtime_error when the display
    /// cannot show it.
    void open(bool fullscreen);

    /// \return whether its size has changed since the last call
    bool takeNewSize();

    void setTitle(const char* title);

    /// Shows what has been drawn.
    void swap() { swap_buffers(); }

    int handle(int event) override;
    void resize(int x, int y, int w, int h) override;

protected:
    void draw() override {}

    /// FLTK calls it when the window has come onto the screen, and again when the X server asks for
    /// what it has lost: the next frame brings that.
    void flush() override { exposed = true; }

private:
    std::function<void(const SceneInput&)> take;
    bool exposed = false;
    bool resized = false;
};

} // namespace live
