#include "Render.h"

#include "GLTest.h"
#include "ProbeNode.h"
#include "SceneGraph.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;

class RenderTest : public GLTest {};

TEST_F(RenderTest, HandsFramesAndUpdatesToItsSceneGraph)
{
    Journal journal;
    ProbeNode root("root", journal);
    SceneGraph graph;
    graph.setRootNode(&root);
    Render render;
    EXPECT_EQ(render.getSG(), nullptr);
    render.setSG(&graph);
    EXPECT_EQ(render.getSG(), &graph);
    render.frame();
    EXPECT_THAT(journal, ElementsAre("root.cull"));
    render.idleFrame();
    EXPECT_THAT(journal, ElementsAre("root.cull", "root.doupdate"));
}

TEST_F(RenderTest, HoldsItsCameraBehindTheSceneGraph)
{
    Render render;
    EXPECT_EQ(render.getCamera(), &render.camera);
    EXPECT_LT(static_cast<const void*>(&render.sg), static_cast<const void*>(&render.camera));
    EXPECT_EQ(render.getCamera()->projType, -1);
}

} // namespace
