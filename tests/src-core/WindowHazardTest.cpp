// Windows of any size, and input at any moment.

#include <GL/glew.h>

#include "Window.h"

#include "PivotNode.h"
#include "ProbeNode.h"
#include "SceneGraph.h"
#include "WindowInput.h"

#include <FL/Fl.H>
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace {

class WindowHazardTest : public testing::Test {
protected:
    Journal journal;
    ProbeNode root{"root", journal};
    PivotNode pivot;
    SceneGraph graph;
    Window window{1, 0, 0, 300, 200};
    std::mt19937 random{1};

    void SetUp() override
    {
        window.end();
        root.attachChild(&pivot);
        graph.setRootNode(&root);
        graph.setPivotNode(&pivot);
        window.getRender()->setSG(&graph);
        window.getRender()->getCamera()->setProjType(1);
    }

    int below(int bound) { return static_cast<int>(random() % static_cast<unsigned>(bound)); }

    void show()
    {
        window.show();
        ASSERT_TRUE(runUntil([&] { return window.valid() != 0; }));
        window.make_current();
    }

    /// A new size, then a frame.
    void resizeTo(int w, int h)
    {
        window.resize(0, 0, w, h);
        window.draw();
        ASSERT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << w << " by " << h;
        GLint viewport[4] = {};
        glGetIntegerv(GL_VIEWPORT, viewport);
        EXPECT_EQ(viewport[2], w);
        EXPECT_EQ(viewport[3], h);
    }

    /// Any input, as FLTK reports it.
    void anyInput()
    {
        const int events[] = {FL_PUSH,  FL_RELEASE, FL_DRAG,  FL_KEYDOWN,    FL_KEYUP,
                              FL_CLOSE, FL_MOVE,    FL_ENTER, FL_MOUSEWHEEL, FL_NO_EVENT};
        const int keys[] = {'v', 'z', 'x', 'c', ' ', 'a', FL_Escape};
        Fl::e_x = below(4000) - 2000;
        Fl::e_y = below(4000) - 2000;
        Fl::e_dy = below(2000) - 1000;
        Fl::e_keysym = keys[below(7)];
        window.handle(events[below(10)]);
    }
};

TEST_F(WindowHazardTest, EverySizeCanBeDrawn)
{
    show();
    for (const auto& [w, h] : {std::pair{1, 1}, {1, 4096}, {4096, 1}, {4096, 4096}, {740, 740}}) {
        resizeTo(w, h);
    }
    for (int n = 0; n < 200; ++n) {
        resizeTo(1 + below(4096), 1 + below(4096));
    }
    EXPECT_EQ(window.width, 300);
}

TEST_F(WindowHazardTest, SizesOfNothingAreMendedByTheNext)
{
    show();
    for (const auto& [w, h] : {std::pair{0, 0}, {-1, -1}, {0, 100}, {100, 0}, {-4096, 4096}}) {
        window.resize(0, 0, w, h);
        window.draw();
        glGetError(); // a viewport of less than nothing is none
    }
    resizeTo(300, 200);
}

TEST_F(WindowHazardTest, InputBeforeTheFirstFrameIsTaken)
{
    testing::internal::CaptureStdout(); // "Closing window."
    for (int n = 0; n < 500; ++n) {
        anyInput();
        window.idle();
        window.resize(0, 0, below(1000), below(1000));
    }
    window.resize(0, 0, 200, 100);
    show();
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_TRUE(std::isnormal(window.pscale));
}

TEST_F(WindowHazardTest, ItMayBeClosedAtAnyMomentAndShownAgain)
{
    testing::internal::CaptureStdout(); // each context is announced
    for (int n = 0; n < 12; ++n) {
        show();
        for (int left = below(40); left > 0; --left) {
            anyInput();
            window.idle();
            if (below(3) == 0) {
                window.make_current();
                window.draw();
            }
            if (below(5) == 0) {
                window.valid(0); // as when the context has been lost
            }
        }
        if (n % 2 == 0) {
            Fl::e_keysym = n % 4 == 0 ? 'q' : 'Q';
            EXPECT_EQ(window.handle(FL_KEYDOWN), 1);
        } else {
            window.hide();
        }
        EXPECT_FALSE(window.shown());
        anyInput();
        window.idle();
        timer(&window);
        handlePendingEvents();
    }
    testing::internal::GetCapturedStdout();
    EXPECT_TRUE(std::all_of(root.transformmat, root.transformmat + 16,
                            [](float element) { return std::isfinite(element); }));
}

} // namespace
