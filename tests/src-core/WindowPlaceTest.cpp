#include <GL/glew.h>

#include "Window.h"

#include "PivotNode.h"
#include "ProbeNode.h"
#include "SceneGraph.h"
#include "UserEvent.h"
#include "WindowInput.h"

#include <FL/Fl.H>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>

namespace {

using testing::ElementsAre;

/// A root that keeps the position of the last click that it received.
class Listener : public ProbeNode {
public:
    using ProbeNode::ProbeNode;
    std::vector<float> click;

    void userEvent(UserEvent* event) override
    {
        click.assign(event->eventData, event->eventData + 2);
    }
};

/// Who puts the window where it is.
enum class Place {
    constructed,   ///< the constructor; FLTK leaves it there
    nearTheCorner, ///< FLTK, which makes room for a frame at the screen's edge
    moved,         ///< somebody, through the X server
    framed,        ///< a window manager, in a frame
};

void PrintTo(Place place, std::ostream* stream)
{
    constexpr const char* NAMES[] = {"constructed", "nearTheCorner", "moved", "framed"};
    *stream << NAMES[static_cast<int>(place)];
}

class WindowPlaceTest : public testing::TestWithParam<Place> {
protected:
    Journal journal;
    Listener root{"root", journal};
    PivotNode pivot;
    SceneGraph graph;
    std::unique_ptr<Window> window;

    void SetUp() override
    {
        const bool corner = GetParam() == Place::nearTheCorner;
        window = std::make_unique<Window>(1, corner ? 0 : 100, corner ? 0 : 50, 740, 740);
        window->end();
        root.attachChild(&pivot);
        graph.setRootNode(&root);
        graph.setPivotNode(&pivot);
        window->getRender()->setSG(&graph);
        window->getRender()->getCamera()->setProjType(1);
        window->show();
        ASSERT_TRUE(runUntil([this] { return window->valid() != 0; }));
        if (GetParam() == Place::moved) {
            act("windowmove --sync @ 400 150");
        } else if (GetParam() == Place::framed) {
            putIntoFrame(*window, 400, 150);
        }
        act("windowfocus --sync @ mousemove --window @ 50 60");
    }

    void act(const std::string& input)
    {
        xdotool(*window, input);
        handlePendingEvents();
    }
    void drag(const std::string& position)
    {
        act("mousedown 1 keydown v");
        act("mousemove --window @ " + position);
        act("keyup v mouseup 1");
    }
    std::vector<GLint> viewport()
    {
        window->make_current();
        std::vector<GLint> values(4);
        glGetIntegerv(GL_VIEWPORT, values.data());
        return values;
    }
};

INSTANTIATE_TEST_SUITE_P(AllPlaces, WindowPlaceTest,
                         testing::Values(Place::constructed, Place::nearTheCorner, Place::moved,
                                         Place::framed),
                         testing::PrintToStringParamName());

TEST_P(WindowPlaceTest, TheWidgetKnowsWhereItsWindowIs)
{
    const Position origin = originOf(*window);
    EXPECT_EQ(window->x(), origin.x);
    EXPECT_EQ(window->y(), origin.y);
}

TEST_P(WindowPlaceTest, ClicksAndDragsAreWhereThePointerIs)
{
    act("click 3");
    EXPECT_THAT(root.click, ElementsAre(50, 60));
    drag("150 90");
    EXPECT_FLOAT_EQ(root.transformmat[12], 0.1f);
    EXPECT_FLOAT_EQ(root.transformmat[13], -0.03f);

    // FLTK tells the position once more when the button is up, computed from the widget's.
    EXPECT_THAT(window->MOUSE, ElementsAre(150, 90));
    act("key space");
    EXPECT_THAT(root.click, ElementsAre(150, 90));
    drag("160 110");
    EXPECT_FLOAT_EQ(root.transformmat[12], 0.11f);
    EXPECT_FLOAT_EQ(root.transformmat[13], -0.05f);
}

TEST_P(WindowPlaceTest, TheSceneKeepsItsSizeInAFrame)
{
    act("windowsize --sync @ 450 150");
    EXPECT_THAT(viewport(), ElementsAre(0, 0, 450, 150));
    // FLTK gives the widget's size back to it.
    putIntoFrame(*window, 200, 100);
    EXPECT_THAT(viewport(), ElementsAre(0, 0, 450, 150));
}

} // namespace
