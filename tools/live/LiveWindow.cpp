#include "LiveWindow.h"

#include "SceneInput.h"
#include "WindowIcon.h"

#include <FL/Fl.H>
#include <stdexcept>
#include <string>
#include <utility>

namespace live {

LiveWindow::LiveWindow(int w, int h, std::function<void(const SceneInput&)> onInput)
    : Fl_Gl_Window(0, 0, w, h), take(std::move(onInput))
{
    constexpr int SMALLEST = 100;
    end();
    mode(FL_DOUBLE | FL_ACCUM | FL_ALPHA | FL_DEPTH);
    copy_label("kelpix");
    xclass("kelpix");
    setWindowIcon(*this);
    size_range(SMALLEST, SMALLEST);
}

void LiveWindow::open(bool fullScreen)
{
    constexpr double STEP = 0.05; // seconds
    constexpr int MOST_STEPS = 60;
    if (fullScreen) {
        fullscreen();
    }
    show();
    if (!shown()) {
        throw std::runtime_error("no window: the display offers no OpenGL with double buffering, "
                                 "accumulation, alpha and depth");
    }
    // What is drawn before the window is on the screen is lost. One that lies outside of the screen
    // never gets there.
    for (int i = 0; i < MOST_STEPS && !exposed; ++i) {
        Fl::wait(STEP);
    }
    make_current();
}

bool LiveWindow::takeNewSize()
{
    return std::exchange(resized, false);
}

void LiveWindow::setTitle(const char* title)
{
    if (std::string(title) != label()) {
        copy_label(title);
    }
}

int LiveWindow::handle(int event)
{
    const auto pass = [&] {
        take({event, Fl::event_x(), Fl::event_y(), Fl::event_key(),
              event == FL_MOUSEWHEEL ? Fl::event_dy() : 0});
        return 1;
    };
    switch (event) {
    case FL_KEYDOWN:
        if (Fl::event_key() == 'q' || Fl::event_key() == 'Q') {
            hide();
            return 1;
        }
        return pass();
    case FL_PUSH:
    case FL_DRAG:
    case FL_RELEASE:
    case FL_MOVE:
    case FL_MOUSEWHEEL:
        return pass();
    case FL_ENTER:
    case FL_FOCUS:
    case FL_UNFOCUS:
        return 1;
    default:
        return 0;
    }
}

void LiveWindow::resize(int x, int y, int w, int h)
{
    resized = resized || w != this->w() || h != this->h();
    Fl_Gl_Window::resize(x, y, w, h);
}

} // namespace live
