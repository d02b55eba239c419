#include "SceneWindow.h"

#include "AppManager.h"

#include <FL/Fl.H>

//! [scene]
SceneWindow::SceneWindow(int w, int h) : Window(1, 0, 0, w, h)
{
    end(); // widgets made after this do not become children of the window
    getRender()->getCamera()->setProjType(1); // perspective
    getRender()->setSG(&scene);

    root.attachChild(&pivot);
    scene.setRootNode(&root);
    scene.setPivotNode(&pivot);
}
//! [scene]

bool SceneWindow::run(float updates, float frames)
{
    // A window that has run before has its timers already.
    Fl::remove_timeout(timerRedraw, this);
    Fl::remove_timeout(timerIdle, this);

    //! [timers]
    AppManager manager;
    manager.addWindow(this);
    manager.addTimeouts(updates, frames);
    const bool isShown = shown() != 0;
    while (shown()) {
        Fl::wait();
    }
    //! [timers]
    return isShown;
}
