#pragma once

#include "Inputs.h"

#include <FL/Fl_Gl_Window.H>
#include <chrono>

namespace wall {

/// The window of one tile: no border, a GL context that lives as long as the window, and input in
/// pixels of the whole wall. It draws only when it is told to: nothing that the X server asks for
/// draws or swaps. Nothing hides it.
class TileWindow : public Fl_Gl_Window {
public:
    /// \param x,y,w,h  on the desktop, pixels
    /// \param left,top where its upper left corner is on the whole wall, pixels from the top left
    TileWindow(int x, int y, int w, int h, int left, int top);

    /// Shows it, and makes its GL context current. Throws std::runtime_error when the display
    /// cannot show it, and DisplayFailure (after throwDisplayFailures) when there is none.
    void open();

    /// The events since the last call go into the record.
    void takeInput(FrameRecord& record);

    /// Shows what has been drawn, and tells the rate in the title, as the scene's own window does:
    /// who conducts it from outside counts these titles.
    void swap();

    int handle(int event) override;

protected:
    void draw() override {}

    /// FLTK calls it when the window has come onto the screen, and again when the X server asks for
    /// what it has lost: the next frame brings that.
    void flush() override { exposed = true; }

private:
    int wallX;
    int wallY;
    bool exposed = false;
    char title[32] = "kelpix"; ///< FLTK keeps a pointer to it
    int frames = 0;            ///< since the rate was taken
    float rate = 0;            ///< frames per second
    std::chrono::steady_clock::time_point since;
    InputQueue queue;

    static void onClose(Fl_Widget* window, void*);
};

} // namespace wall
