#include <GL/glew.h>

#include "Window.h"

#include "WindowInput.h"
#include "WindowScene.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <string>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

/// The same through the X server: a window that is shown and has the keyboard.
class WindowXTest : public WindowInputTest {
protected:
    void SetUp() override
    {
        WindowInputTest::SetUp();
        window.show();
        ASSERT_TRUE(runUntil([this] { return window.valid() != 0; }));
        act("windowfocus --sync @ mousemove --window @ 50 60");
        journal.clear();
    }

    /// Moves the mouse and types, see xdotool(1), and lets the window handle it. The toolkit
    /// handles a movement after all that came with it: what follows a movement is for another call.
    void act(const std::string& input)
    {
        xdotool(window, input);
        handlePendingEvents();
    }
    void dragTo(const std::string& position, const std::string& key)
    {
        act("mousedown 1 keydown " + key);
        act("mousemove --window @ " + position);
        act("keyup " + key + " mouseup 1");
    }
};

TEST_F(WindowXTest, MovingAndClicking)
{
    EXPECT_THAT(window.MOUSE, ElementsAre(50, 60));
    act("mousemove --window @ 100 200 click 3");
    EXPECT_THAT(root.clicks, ElementsAre(ElementsAre(100, 200, 1)));
    act("mousemove --window @ 10 20 click 1");
    EXPECT_EQ(root.clicks.size(), 1u);
    EXPECT_THAT(window.MOUSE, ElementsAre(10, 20));
    act("key space");
    EXPECT_THAT(root.clicks, ElementsAre(ElementsAre(100, 200, 1), ElementsAre(10, 20, 1)));
}

TEST_F(WindowXTest, TheWheel)
{
    act("click 5 click 5");
    EXPECT_NEAR(window.pscale, 0.64, 1e-6);
    EXPECT_NEAR(root.transformmat[0], 0.64, 1e-6);
    act("click 4 click 4 click 4");
    EXPECT_NEAR(window.pscale, 1.25, 1e-6);
}

TEST_F(WindowXTest, DraggingWithAKeyPressedAfterTheButton)
{
    dragTo("150 90", "v");
    EXPECT_FLOAT_EQ(root.transformmat[12], 0.1f);
    EXPECT_FLOAT_EQ(root.transformmat[13], -0.03f);
    EXPECT_THAT(window.MOUSE, ElementsAre(150, 90));

    int y = 90;
    for (const Turn& turn : {Turn{'z', 0, 0, 1}, Turn{'x', 1, 0, 0}, Turn{'c', 0, 1, 0}}) {
        const std::string key(1, turn.key);
        PivotNode expected;
        expected.rotate(turn.x, turn.y, turn.z, 40);
        std::ranges::copy(IDENTITY, pivot.transformmat);
        y += 40;
        dragTo("300 " + std::to_string(y), key);
        EXPECT_THAT(pivot.transformmat, ElementsAreArray(expected.transformmat)) << key;
    }
}

TEST_F(WindowXTest, AKeyPressedBeforeTheButtonIsForgotten)
{
    act("keydown v mousedown 1");
    act("mousemove --window @ 150 90");
    act("keyup v mouseup 1");
    EXPECT_THAT(root.transformmat, ElementsAreArray(IDENTITY));
    EXPECT_THAT(pivot.transformmat, ElementsAreArray(IDENTITY));
}

TEST_F(WindowXTest, QHidesTheWindow)
{
    act("key a");
    EXPECT_TRUE(window.shown());
    act("key q");
    EXPECT_FALSE(window.shown());
}

TEST_F(WindowXTest, SoDoesQWithShift)
{
    act("key Q");
    EXPECT_FALSE(window.shown());
}

TEST_F(WindowXTest, TheCodeOfACapitalQHidesToo)
{
    EXPECT_EQ(type('Q'), 1);
    EXPECT_FALSE(window.shown());
}

} // namespace
