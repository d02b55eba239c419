#pragma once

#include <GL/glew.h>

#include "Window.h"

#include "PivotNode.h"
#include "ProbeNode.h"
#include "SceneGraph.h"
#include "UserEvent.h"

#include <FL/Fl.H>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

inline constexpr float IDENTITY[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

/// A root that keeps the data of the clicks it receives.
class Listener : public ProbeNode {
public:
    using ProbeNode::ProbeNode;
    std::vector<std::vector<float>> clicks;

    void userEvent(UserEvent* event) override
    {
        ProbeNode::userEvent(event);
        EXPECT_EQ(event->getEventType(), MOUSE_CLICK);
        clicks.emplace_back(event->eventData, event->eventData + 3);
    }
};

/// A window that nobody has shown yet, with a scene of a root, a pivot and a leaf.
class WindowInputTest : public testing::Test {
protected:
    Journal journal;
    Listener root{"root", journal};
    PivotNode pivot;
    Listener leaf{"leaf", journal};
    SceneGraph graph;
    Window window{1, 100, 50, 740, 740};

    void SetUp() override
    {
        window.end();
        root.attachChild(&pivot);
        pivot.attachChild(&leaf);
        graph.setRootNode(&root);
        graph.setPivotNode(&pivot);
        window.getRender()->setSG(&graph);
        window.getRender()->getCamera()->setProjType(1);
        placePointer(0, 0);
        Fl::e_keysym = 0;
        Fl::e_dy = 0;
    }

    static void placePointer(int x, int y)
    {
        Fl::e_x = x;
        Fl::e_y = y;
    }
    int press(int button)
    {
        Fl::e_keysym = FL_Button + button;
        return window.handle(FL_PUSH);
    }
    int type(int key)
    {
        Fl::e_keysym = key;
        return window.handle(FL_KEYDOWN);
    }
    int drag(int key)
    {
        Fl::e_keysym = key;
        return window.handle(FL_DRAG);
    }
    int turnWheel(int dy)
    {
        Fl::e_dy = dy;
        return window.handle(FL_MOUSEWHEEL);
    }
    void expectFinite()
    {
        EXPECT_THAT(root.transformmat,
                    testing::Each(testing::Truly([](float x) { return std::isfinite(x); })));
        EXPECT_THAT(pivot.transformmat,
                    testing::Each(testing::Truly([](float x) { return std::isfinite(x); })));
        EXPECT_TRUE(std::isfinite(window.pscale));
    }
};

/// A key that turns the pivot, and about which axis.
struct Turn {
    char key;
    float x, y, z;
};
