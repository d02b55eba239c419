#pragma once

#include "SceneGraph.h"

#include "GLTest.h"
#include "ProbeNode.h"

#include <vector>

/// A graph with a root, and a GL context to draw it in.
class SceneGraphTest : public GLTest {
protected:
    Journal journal;
    SceneGraph graph;
    ProbeNode root{"root", journal};

    void SetUp() override
    {
        GLTest::SetUp();
        graph.setRootNode(&root);
    }

    /// Draws and checks that the modelview stack and the view transform came through unharmed.
    void drawFrame()
    {
        const GLint depth = getInteger(GL_MODELVIEW_STACK_DEPTH);
        const std::vector<float> view = getMatrix(GL_MODELVIEW_MATRIX);
        graph.draw();
        EXPECT_EQ(getInteger(GL_MODELVIEW_STACK_DEPTH), depth);
        EXPECT_EQ(getMatrix(GL_MODELVIEW_MATRIX), view);
    }
};
