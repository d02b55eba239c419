#include "SceneWindow.h"

#include "AppManager.h"
#include "ArmedTimers.h"
#include "ProbeNode.h"
#include "WindowInput.h"

#include <FL/Fl.H>
#include <algorithm>
#include <gmock/gmock.h>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Ge;

TEST(ReadySceneTest, RootAndPivotAreAttachedAndTheCameraIsSet)
{
    SceneWindow window(300, 200);
    EXPECT_EQ(window.getWindowId(), 1);
    EXPECT_EQ(window.w(), 300);
    EXPECT_EQ(window.h(), 200);
    EXPECT_EQ(Fl_Group::current(), nullptr);
    EXPECT_THAT(*window.root.getChildList(), ElementsAre(&window.pivot));
    EXPECT_EQ(window.getRender()->getSG(), &window.scene);
    EXPECT_EQ(window.scene.getRootNode(), &window.root);
    EXPECT_EQ(window.scene.getPivotNode(), &window.pivot);
    EXPECT_EQ(window.getRender()->getCamera()->projType, 1);
    EXPECT_FALSE(window.shown());
}

/// Hides its window in an update: not before the third, and not before it has been drawn.
class Closer : public ProbeNode {
public:
    explicit Closer(SceneWindow& shown, Journal& notes) : ProbeNode("node", notes), window(shown) {}

    void doupdate() override
    {
        ProbeNode::doupdate();
        if (std::ranges::count(journal, "node.doupdate") >= 3 &&
            std::ranges::count(journal, "node.cull") >= 1) {
            window.hide();
        }
    }

private:
    SceneWindow& window;
};

TEST(ReadySceneTest, RunShowsDrawsAndUpdatesUntilTheWindowIsHidden)
{
    Journal journal;
    SceneWindow window(60, 40);
    Closer node(window, journal);
    window.pivot.attachChild(&node);
    for (int times = 0; times < 2; ++times) {
        journal.clear();
        armedTimers().clear();
        EXPECT_TRUE(window.run(50, 100));
        EXPECT_FALSE(window.shown());
        EXPECT_EQ(tm_idle, 50);
        EXPECT_EQ(tm_draw, 100);
        EXPECT_THAT(journal, Contains("node.doupdate").Times(Ge(3)));
    }
    // One timer of each kind is armed, although it has run twice: with rates of 0 each that is
    // armed fires once more.
    tm_idle = 0;
    tm_draw = 0;
    armedTimers().clear();
    for (int i = 0; i < 10; ++i) {
        Fl::wait(0.01);
    }
    const auto fired = [](void (*callback)(void*)) {
        return std::ranges::count(armedTimers(), callback, &ArmedTimer::callback);
    };
    ASSERT_TRUE(runUntil([&] { return fired(timerIdle) >= 1 && fired(timerRedraw) >= 1; }));
    EXPECT_EQ(fired(timerIdle), 1);
    EXPECT_EQ(fired(timerRedraw), 1);
}

TEST(ReadySceneTest, RunSaysThatTheWindowCannotBeShown)
{
    class Invisible : public SceneWindow {
    public:
        Invisible() : SceneWindow(60, 40) {}
        void show() override {}
    };
    EXPECT_FALSE(Invisible().run(40, 40));
}

} // namespace
