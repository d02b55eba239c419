#include <GL/glew.h>

#include "Window.h"

#include "WindowScene.h"

#include <FL/Fl.H>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::FloatNear;
using testing::IsEmpty;
using testing::Pointwise;

TEST(UserEventTest, IsMadeFromItsKind)
{
    UserEvent event(MOUSE_WHEEL);
    EXPECT_EQ(event.getEventType(), MOUSE_WHEEL);
    EXPECT_EQ(event.getEventData(), event.eventData);
    EXPECT_EQ(std::size(event.eventData), 10u);
    UserEvent unset;
    unset.eventType = MOUSE_DRAG;
    EXPECT_EQ(unset.getEventType(), MOUSE_DRAG);
}

TEST(UserEventTest, KindsKeepTheirValues)
{
    EXPECT_EQ(MOUSE_MOVE, 0);
    EXPECT_EQ(MOUSE_DRAG, 1);
    EXPECT_EQ(MOUSE_CLICK, 2);
    EXPECT_EQ(MOUSE_WHEEL, 3);
}

TEST_F(WindowInputTest, EventsWithoutAMeaningAreLeftToOthers)
{
    for (const int event :
         std::vector<int>{FL_NO_EVENT, FL_RELEASE, FL_ENTER, FL_LEAVE, FL_FOCUS, FL_UNFOCUS,
                          FL_KEYUP, FL_SHORTCUT, FL_DEACTIVATE, FL_ACTIVATE, FL_HIDE, FL_SHOW,
                          FL_PASTE, FL_SELECTIONCLEAR, -1}) {
        EXPECT_EQ(window.handle(event), 0) << event;
    }
    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(WindowInputTest, EventsBehindTheWheelReturnAtOnce)
{
    Fl::e_keysym = 'q';
    for (const int event : std::vector<int>{20, 21, FL_FULLSCREEN, FL_ZOOM_GESTURE, 100, 1000000}) {
        EXPECT_EQ(window.handle(event), 0) << event;
    }
    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(WindowInputTest, ARightClickReachesEveryNode)
{
    placePointer(100, 200);
    EXPECT_EQ(press(FL_RIGHT_MOUSE), 1);
    EXPECT_THAT(journal, ElementsAre("root.userEvent", "leaf.userEvent"));
    EXPECT_THAT(root.clicks, ElementsAre(ElementsAre(100, 200, 1)));
    EXPECT_THAT(leaf.clicks, ElementsAre(ElementsAre(100, 200, 1)));
    EXPECT_THAT(window.MOUSE, ElementsAre(100, 200));
}

TEST_F(WindowInputTest, ThePositionIsStoredAfterTheClickHasBeenSent)
{
    class Observer : public ProbeNode {
    public:
        Window& window;
        std::vector<int> position;
        Observer(Window& observed, Journal& notes) : ProbeNode("observer", notes), window(observed)
        {
        }
        void userEvent(UserEvent*) override { position = {window.MOUSE[0], window.MOUSE[1]}; }
    };
    Observer observer(window, journal);
    leaf.attachChild(&observer);
    placePointer(12, 34);
    window.handle(FL_MOVE);
    placePointer(100, 200);
    press(FL_RIGHT_MOUSE);
    EXPECT_THAT(observer.position, ElementsAre(12, 34));
    EXPECT_THAT(window.MOUSE, ElementsAre(100, 200));
}

TEST_F(WindowInputTest, AClickCarriesTheZoom)
{
    window.pscale = 1.5f;
    press(FL_RIGHT_MOUSE);
    EXPECT_THAT(root.clicks, ElementsAre(ElementsAre(0, 0, 1.5f)));
}

TEST_F(WindowInputTest, OtherButtonsDoNothing)
{
    placePointer(100, 200);
    for (const int button : {FL_LEFT_MOUSE, FL_MIDDLE_MOUSE, 4, 5}) {
        EXPECT_EQ(press(button), 1) << button;
    }
    EXPECT_THAT(journal, IsEmpty());
    EXPECT_THAT(window.MOUSE, ElementsAre(0, 0));
}

TEST_F(WindowInputTest, MovingRemembersThePointer)
{
    placePointer(12, 34);
    EXPECT_EQ(window.handle(FL_MOVE), 1);
    EXPECT_THAT(window.MOUSE, ElementsAre(12, 34));
    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(WindowInputTest, SpaceClicksAtTheLastPosition)
{
    placePointer(12, 34);
    window.handle(FL_MOVE);
    placePointer(500, 600);
    EXPECT_EQ(type(' '), 1);
    EXPECT_THAT(root.clicks, ElementsAre(ElementsAre(12, 34, 1)));
    EXPECT_THAT(window.MOUSE, ElementsAre(12, 34));
}

TEST_F(WindowInputTest, SpaceBeforeAnyMovementClicksAtWhateverIsRemembered)
{
    window.MOUSE[0] = -7;
    window.MOUSE[1] = 8;
    type(' ');
    EXPECT_THAT(root.clicks, ElementsAre(ElementsAre(-7, 8, 1)));
}

TEST_F(WindowInputTest, OtherKeysDoNothing)
{
    for (const int key : std::vector<int>{'a', 'v', 'z', 'x', 'c', FL_Escape, FL_Enter}) {
        EXPECT_EQ(type(key), 1) << key;
    }
    EXPECT_THAT(journal, IsEmpty());
    EXPECT_THAT(root.transformmat, ElementsAreArray(IDENTITY));
}

TEST_F(WindowInputTest, ClosingIsAnnounced)
{
    testing::internal::CaptureStdout();
    EXPECT_EQ(window.handle(FL_CLOSE), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Closing window.\n");
}

TEST_F(WindowInputTest, DraggingWithVPansTheRoot)
{
    window.MOUSE[0] = 100;
    window.MOUSE[1] = 100;
    placePointer(150, 130);
    EXPECT_EQ(drag('v'), 1);
    EXPECT_EQ(root.transformmat[12], 50.0f / 1000);
    EXPECT_EQ(root.transformmat[13], -30.0f / 1000);
    EXPECT_EQ(root.transformmat[14], 0);
    EXPECT_THAT(window.MOUSE, ElementsAre(150, 130));
    EXPECT_THAT(pivot.transformmat, ElementsAreArray(IDENTITY));

    // The zoom does not slow it: the root's own scale does its part.
    window.pscale = 4;
    root.transformmat[0] = 4;
    placePointer(160, 130);
    drag('v');
    EXPECT_FLOAT_EQ(root.transformmat[12], 0.05f + 4 * 0.01f);
}

class WindowTurnTest : public WindowInputTest, public testing::WithParamInterface<Turn> {};

INSTANTIATE_TEST_SUITE_P(AllAxes, WindowTurnTest,
                         testing::Values(Turn{'z', 0, 0, 1}, Turn{'x', 1, 0, 0},
                                         Turn{'c', 0, 1, 0}),
                         [](const auto& info) { return std::string(1, info.param.key); });

TEST_P(WindowTurnTest, DraggingTurnsThePivotByTheVerticalMovement)
{
    const Turn turn = GetParam();
    PivotNode expected;
    expected.rotate(turn.x, turn.y, turn.z, 30);
    window.MOUSE[0] = 100;
    window.MOUSE[1] = 100;
    placePointer(600, 130);
    EXPECT_EQ(drag(turn.key), 1);
    EXPECT_THAT(pivot.transformmat, ElementsAreArray(expected.transformmat));
    EXPECT_THAT(root.transformmat, ElementsAreArray(IDENTITY));
    EXPECT_THAT(window.MOUSE, ElementsAre(600, 130));

    // About its own axis, on top of what it was turned before.
    placePointer(600, 110);
    drag(turn.key);
    expected.rotate(turn.x, turn.y, turn.z, -20);
    EXPECT_THAT(pivot.transformmat, ElementsAreArray(expected.transformmat));
}

TEST_P(WindowTurnTest, TurnsSlowerWhenZoomedIn)
{
    const Turn turn = GetParam();
    PivotNode expected;
    expected.rotate(turn.x, turn.y, turn.z, 30.0f / 1.5625f);
    window.pscale = 1.5625f;
    placePointer(0, 30);
    drag(turn.key);
    EXPECT_THAT(pivot.transformmat, ElementsAreArray(expected.transformmat));
}

TEST_P(WindowTurnTest, HorizontalMovementIsNotAccumulated)
{
    const Turn turn = GetParam();
    placePointer(300, 0);
    drag(turn.key);
    EXPECT_THAT(window.MOUSE, ElementsAre(300, 0));
    placePointer(0, 0);
    drag(turn.key);
    EXPECT_THAT(pivot.transformmat, Pointwise(FloatNear(0), IDENTITY));
}

TEST_P(WindowTurnTest, AnInfiniteTurnIsDropped)
{
    const Turn turn = GetParam();
    for (const float pscale : {0.0f, std::numeric_limits<float>::quiet_NaN()}) {
        window.pscale = pscale;
        for (const int y : {0, 30, 90}) {
            placePointer(0, y);
            EXPECT_EQ(drag(turn.key), 1);
            EXPECT_THAT(pivot.transformmat, ElementsAreArray(IDENTITY));
            EXPECT_THAT(window.MOUSE, ElementsAre(0, y));
        }
    }
}

TEST_F(WindowInputTest, DraggingWithoutAKeyMovesNothingAndForgetsThePointer)
{
    window.MOUSE[0] = 100;
    window.MOUSE[1] = 100;
    placePointer(150, 130);
    for (const int key : std::vector<int>{FL_Button + 1, 0, 'a', 'V', ' '}) {
        EXPECT_EQ(drag(key), 1);
    }
    EXPECT_THAT(root.transformmat, ElementsAreArray(IDENTITY));
    EXPECT_THAT(pivot.transformmat, ElementsAreArray(IDENTITY));
    EXPECT_THAT(window.MOUSE, ElementsAre(100, 100));
}

TEST_F(WindowInputTest, TheWheelZoomsInUpwards)
{
    EXPECT_EQ(turnWheel(-1), 1);
    EXPECT_EQ(window.pscale, 1.25f);
    EXPECT_EQ(root.transformmat[0], 1.25f);
    EXPECT_EQ(root.transformmat[5], 1.25f);
    EXPECT_EQ(root.transformmat[10], 1);
    // A step counts once, however far the wheel turned.
    turnWheel(-7);
    EXPECT_EQ(window.pscale, 1.5625f);
}

TEST_F(WindowInputTest, TwoStepsDownLeaveASixteenTwentyFifth)
{
    EXPECT_EQ(turnWheel(1), 1);
    EXPECT_EQ(turnWheel(1), 1);
    EXPECT_NEAR(window.pscale, 0.64, 1e-6);
    EXPECT_NEAR(root.transformmat[0], 0.64, 1e-6);
    EXPECT_NEAR(root.transformmat[5], 0.64, 1e-6);
    EXPECT_EQ(root.transformmat[10], 1);
}

TEST_F(WindowInputTest, TheStepsUseTheirOwnFactors)
{
    // The root is multiplied by 0.8, the zoom factor divided by 1.25: in single precision they
    // part.
    float rootScale = 1;
    float zoom = 1;
    for (int i = 0; i < 40; ++i) {
        turnWheel(1);
        rootScale = rootScale * 0.8f;
        zoom = zoom / 1.25f;
        ASSERT_EQ(root.transformmat[0], rootScale);
        ASSERT_EQ(window.pscale, zoom);
    }
    EXPECT_NE(rootScale, zoom);
}

TEST_F(WindowInputTest, OneStepInAndOneOutRestoreTheScale)
{
    root.scale(1.2f, 1.2f, 1);
    root.translate(0.3f, -0.2f, 0);
    const std::vector<float> before(root.transformmat, root.transformmat + 16);
    turnWheel(-1);
    turnWheel(1);
    EXPECT_THAT(root.transformmat, Pointwise(FloatNear(1e-6f), before));
    EXPECT_EQ(window.pscale, 1);
}

TEST_F(WindowInputTest, AWheelThatDidNotTurnVerticallyDoesNothing)
{
    EXPECT_EQ(turnWheel(0), 1);
    EXPECT_EQ(window.pscale, 1);
    EXPECT_THAT(root.transformmat, ElementsAreArray(IDENTITY));
}

TEST_F(WindowInputTest, MovesGoThroughTheNodesVirtualOperations)
{
    class Mover : public ProbeNode {
    public:
        using ProbeNode::ProbeNode;
        void translate(float, float, float) override { note("translate"); }
        void scale(float, float, float) override { note("scale"); }
        void rotate(float, float, float, float) override { note("rotate"); }
    };
    Mover mover("mover", journal);
    Mover turner("turner", journal);
    graph.setRootNode(&mover);
    graph.setPivotNode(&turner);
    drag('v');
    turnWheel(1);
    drag('z');
    EXPECT_THAT(journal, ElementsAre("mover.translate", "mover.scale", "turner.rotate"));
}

TEST_F(WindowInputTest, AStormOfWheelStepsCanAlwaysBeUndone)
{
    root.rotate(0, 0, 1, 90);
    root.translate(0.25f, -0.5f, 0);
    window.pscale = 0.75f;
    for (const int direction : {1, -1}) {
        for (int i = 0; i < 2000; ++i) {
            turnWheel(direction);
        }
        expectFinite();
        EXPECT_TRUE(std::isnormal(window.pscale)) << window.pscale;
        EXPECT_TRUE(std::isnormal(root.transformmat[1])) << root.transformmat[1];
        EXPECT_TRUE(std::isnormal(root.transformmat[4])) << root.transformmat[4];
        const auto isBack = [&] {
            return direction > 0 ? window.pscale >= 0.75f : window.pscale <= 0.75f;
        };
        for (int i = 0; i < 2000 && !isBack(); ++i) {
            turnWheel(-direction);
        }
        EXPECT_NEAR(window.pscale, 0.75f, 0.2f);
        EXPECT_NEAR(root.transformmat[1], 1, 0.25f);
        EXPECT_NEAR(root.transformmat[4], -1, 0.25f);
    }
}

TEST_F(WindowInputTest, NoMixOfMovesLeavesNumbersThatAreNotFinite)
{
    for (int i = 0; i < 1000; ++i) {
        turnWheel(-1);
    }
    for (int i = 0; i < 100; ++i) {
        placePointer(i % 2 == 0 ? 32767 : -32768, i % 3 == 0 ? 32767 : -32768);
        drag("vzxc"[i % 4]);
        turnWheel(i % 5 == 0 ? 1 : -1);
    }
    expectFinite();
}

TEST_F(WindowInputTest, NeitherScaleOfTheRootIsLostByZoomingOut)
{
    // Times 0.8 it is below the smallest number that has all its bits.
    constexpr float SMALL = 1.4e-38f;
    for (const std::size_t element : {std::size_t{0}, std::size_t{5}}) {
        root.transformmat[0] = 1;
        root.transformmat[5] = 1;
        root.transformmat[element] = SMALL;
        turnWheel(1);
        EXPECT_EQ(root.transformmat[element], SMALL);
        EXPECT_EQ(window.pscale, 1);
    }
}

TEST_F(WindowInputTest, ARootWithoutScaleIsMovedAllTheSame)
{
    root.scale(0, 2, 1);
    window.pscale = 0;
    turnWheel(-1);
    EXPECT_EQ(root.transformmat[0], 0);
    EXPECT_EQ(root.transformmat[5], 2.5f);
    EXPECT_EQ(window.pscale, 0);
}

TEST_F(WindowInputTest, WithoutASceneInputIsHandledAndMovesNothing)
{
    const auto input = [this] {
        EXPECT_EQ(press(FL_RIGHT_MOUSE), 1);
        EXPECT_EQ(type(' '), 1);
        for (const char key : {'v', 'z', 'x', 'c'}) {
            EXPECT_EQ(drag(key), 1);
        }
        EXPECT_EQ(turnWheel(1), 1);
    };
    graph.setRootNode(nullptr);
    graph.setPivotNode(nullptr);
    input();
    window.getRender()->setSG(nullptr);
    input();
    EXPECT_THAT(journal, IsEmpty());
    EXPECT_EQ(window.pscale, 1);
}

} // namespace
