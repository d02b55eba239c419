#include "TileWindow.h"

#include <FL/Fl.H>
#include <cstdio>
#include <stdexcept>

namespace wall {

TileWindow::TileWindow(int x, int y, int w, int h, int left, int top)
    : Fl_Gl_Window(x, y, w, h), wallX(left), wallY(top)
{
    label(title);
    end();
    border(0);
    mode(FL_DOUBLE | FL_ACCUM | FL_ALPHA | FL_DEPTH);
    xclass("kelpix");
    callback(onClose);
}

void TileWindow::open()
{
    constexpr double STEP = 0.05; // seconds
    constexpr int MOST_STEPS = 60;
    show();
    if (!shown()) {
        throw std::runtime_error(
            "the display offers no OpenGL with double buffering, accumulation, alpha and depth");
    }
    // What is drawn before the window is on the screen is lost. One that lies outside of the screen
    // never gets there.
    for (int i = 0; i < MOST_STEPS && !exposed; ++i) {
        Fl::wait(STEP);
    }
    make_current();
    cursor(FL_CURSOR_NONE);
}

void TileWindow::takeInput(FrameRecord& record)
{
    Fl::check();
    queue.fill(record);
}

void TileWindow::swap()
{
    using Seconds = std::chrono::duration<float>;

    swap_buffers();
    const auto now = std::chrono::steady_clock::now();
    const float passed = Seconds(now - since).count();
    ++frames;
    if (passed >= 1) {
        rate = static_cast<float>(frames) / passed;
        since = now;
        frames = 0;
    }
    std::snprintf(title, sizeof title, "kelpix (%3.1f fps)", static_cast<double>(rate));
    label(title);
}

int TileWindow::handle(int event)
{
    switch (event) {
    case FL_PUSH:
    case FL_DRAG:
    case FL_RELEASE:
    case FL_MOVE:
    case FL_MOUSEWHEEL:
    case FL_KEYDOWN:
        queue.add({event, wallX + Fl::event_x(), wallY + Fl::event_y(), Fl::event_key(),
                   event == FL_MOUSEWHEEL ? Fl::event_dy() : 0});
        return 1;
    case FL_ENTER:
    case FL_FOCUS:
    case FL_UNFOCUS:
        return 1;
    default:
        return 0;
    }
}

/// A window that is closed ends the wall, as the key q does.
void TileWindow::onClose(Fl_Widget* window, void*)
{
    static_cast<TileWindow*>(window)->queue.add({FL_KEYDOWN, 0, 0, 'q', 0});
}

} // namespace wall
