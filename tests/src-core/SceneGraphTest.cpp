#include "SceneGraph.h"
#include "PivotNode.h"
#include "RootNode.h"
#include "UserEvent.h"

#include "DrawnGraph.h"

#include <array>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <memory>
#include <new>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::FloatNear;
using testing::IsEmpty;
using testing::Pointwise;

/// Where glFlush is noted, unless it is null.
Journal* flushes = nullptr;

} // namespace

/// Stands before GL's own.
void glFlush()
{
    static const auto next = reinterpret_cast<void (*)()>(dlsym(RTLD_NEXT, "glFlush"));
    if (flushes) {
        flushes->emplace_back("flush");
    }
    next();
}

namespace {

/// The world matrix that a node holds.
std::vector<float> worldOf(Node& node)
{
    return {node.glWorldMatrix(), node.glWorldMatrix() + 16};
}

std::vector<float> translation(float x, float y, float z)
{
    return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1};
}

TEST(SceneGraphDataTest, StartsEmpty)
{
    const SceneGraph graph;
    EXPECT_EQ(graph.pivotNode, nullptr);
    EXPECT_EQ(graph.rootNode, nullptr);
    EXPECT_EQ(graph.envNode, nullptr);
    EXPECT_TRUE(graph.listOfLights.empty());
    EXPECT_EQ(graph.node_count, 0);
}

TEST(SceneGraphDataTest, KeepsItsFieldsInOrder)
{
    const SceneGraph graph;
    const std::array<const void*, 5> fields = {&graph.pivotNode, &graph.rootNode, &graph.envNode,
                                               &graph.listOfLights, &graph.node_count};
    EXPECT_TRUE(std::is_sorted(fields.begin(), fields.end()));
}

TEST(SceneGraphDataTest, AccessorsKeepTheNodes)
{
    RootNode root;
    PivotNode pivot;
    PivotNode env;
    PivotNode light;
    SceneGraph graph;
    graph.setRootNode(&root);
    graph.setPivotNode(&pivot);
    graph.setEnvNode(&env);
    graph.addLight(&light);
    graph.addLight(&pivot);
    EXPECT_EQ(graph.getRootNode(), &root);
    EXPECT_EQ(graph.getPivotNode(), &pivot);
    EXPECT_EQ(graph.envNode, &env);
    EXPECT_THAT(graph.listOfLights, ElementsAre(&light, &pivot));
}

TEST_F(SceneGraphTest, AllWalksVisitParentsFirstAndSiblingsInOrder)
{
    ProbeNode a("a", journal);
    ProbeNode a1("a1", journal);
    ProbeNode a2("a2", journal);
    ProbeNode b("b", journal);
    root.attachChild(&a);
    a.attachChild(&a1);
    a.attachChild(&a2);
    root.attachChild(&b);

    drawFrame();
    EXPECT_THAT(journal, ElementsAre("root.cull", "a.cull", "a1.cull", "a2.cull", "b.cull"));
    journal.clear();
    graph.update();
    EXPECT_THAT(journal, ElementsAre("root.doupdate", "a.doupdate", "a1.doupdate", "a2.doupdate",
                                     "b.doupdate"));
    journal.clear();
    graph.event(new UserEvent(MOUSE_CLICK));
    EXPECT_THAT(journal, ElementsAre("root.userEvent", "a.userEvent", "a1.userEvent",
                                     "a2.userEvent", "b.userEvent"));
}

/// Tells the steps that follow one another from those with something else in between.
TEST_F(SceneGraphTest, TheUpdateStepTellsWhichNodeIsUpdatedAndCountsThemAll)
{
    static std::vector<UpdateStep> steps;
    steps.clear();
    ProbeNode a("a", journal);
    ProbeNode b("b", journal);
    ProbeNode c("c", journal);
    root.children = {&a, nullptr, &b, &c};
    const auto note = [](ProbeNode&) { steps.push_back(SceneGraph::updateStep()); };
    root.onUpdate = a.onUpdate = b.onUpdate = note;
    c.setUpdateFunc([](Node*) { steps.push_back(SceneGraph::updateStep()); });
    const std::uint64_t before = SceneGraph::updateStep().number;
    graph.update();
    graph.updateScene(nullptr);
    graph.updateScene(&a);
    const std::vector<const Node*> nodes = {&root, &a, &b, nullptr, &a};
    const std::uint64_t numbers[] = {1, 2, 3, 4, 7};
    ASSERT_EQ(steps.size(), 5u);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(steps[i].node, nodes[i]);
        EXPECT_EQ(steps[i].number, before + numbers[i]) << "two more for the end of a traversal";
    }
    EXPECT_EQ(SceneGraph::updateStep().node, nullptr);
    EXPECT_EQ(SceneGraph::updateStep().number, before + 9);
}

TEST_F(SceneGraphTest, ATraversalEndsToTheUpdateStepWhenANodeThrows)
{
    ProbeNode a("a", journal);
    root.children = {&a};
    a.onUpdate = [](ProbeNode&) { throw std::bad_alloc(); };
    const std::uint64_t before = SceneGraph::updateStep().number;
    EXPECT_THROW(graph.update(), std::bad_alloc);
    EXPECT_EQ(SceneGraph::updateStep().node, nullptr);
    EXPECT_EQ(SceneGraph::updateStep().number, before + 4);
}

TEST_F(SceneGraphTest, UpdateCallsAnUpdateFunctionInPlaceOfTheStep)
{
    ProbeNode a("a", journal);
    root.attachChild(&a);
    root.setUpdateFunc([](Node* node) { node->setName("seen"); });
    graph.update();
    EXPECT_STREQ(root.getName(), "seen");
    EXPECT_THAT(journal, ElementsAre("a.doupdate"));
}

TEST_F(SceneGraphTest, TheWorldMatrixIsTheProductOfTheTransformsAboveTheNode)
{
    RootNode top;
    PivotNode joint;
    ProbeNode leaf("leaf", journal);
    top.attachChild(&joint);
    joint.attachChild(&leaf);
    top.translate(1, 2, 3);
    top.rotate(0, 0, 1, 30);
    joint.scale(2, 3, 4);
    joint.rotate(1, 1, 0, -75);
    leaf.translate(-0.5f, 0.25f, 8);
    graph.setRootNode(&top);
    glTranslatef(0, 0, -1);
    drawFrame();

    glTranslatef(1, 2, 3);
    glRotatef(30, 0, 0, 1);
    EXPECT_THAT(worldOf(top), Pointwise(FloatNear(1e-5f), getMatrix(GL_MODELVIEW_MATRIX)));
    glScalef(2, 3, 4);
    glRotatef(-75, 1, 1, 0);
    EXPECT_THAT(worldOf(joint), Pointwise(FloatNear(1e-5f), getMatrix(GL_MODELVIEW_MATRIX)));
    glTranslatef(-0.5f, 0.25f, 8);
    EXPECT_THAT(worldOf(leaf), Pointwise(FloatNear(1e-4f), getMatrix(GL_MODELVIEW_MATRIX)));
}

TEST_F(SceneGraphTest, ASiblingIsNotMovedByItsNeighbors)
{
    ProbeNode a("a", journal);
    ProbeNode a1("a1", journal);
    ProbeNode culled("culled", journal);
    ProbeNode b("b", journal);
    root.translate(1, 0, 0);
    a.translate(0, 1, 0);
    a1.translate(0, 0, 1);
    culled.translate(9, 9, 9);
    culled.visible = -1;
    b.translate(0, 2, 0);
    root.attachChild(&a);
    a.attachChild(&a1);
    root.attachChild(&culled);
    root.attachChild(&b);
    drawFrame();
    EXPECT_EQ(worldOf(root), translation(1, 0, 0));
    EXPECT_EQ(worldOf(a), translation(1, 1, 0));
    EXPECT_EQ(worldOf(a1), translation(1, 1, 1));
    EXPECT_EQ(worldOf(b), translation(1, 2, 0));
}

TEST_F(SceneGraphTest, ANodeSeesItsOwnFrameInCull)
{
    ProbeNode a("a", journal);
    root.translate(1, 0, 0);
    a.translate(0, 5, 0);
    a.onCull = [](ProbeNode& node) {
        float current[16];
        glGetFloatv(GL_MODELVIEW_MATRIX, current);
        EXPECT_THAT(current, ElementsAreArray(translation(1, 5, 0)));
        EXPECT_EQ(worldOf(node), translation(1, 5, 0));
    };
    root.attachChild(&a);
    drawFrame();
    EXPECT_THAT(journal, ElementsAre("root.cull", "a.cull"));
}

TEST_F(SceneGraphTest, DrawSelectsTheModelviewStack)
{
    glMatrixMode(GL_PROJECTION);
    graph.draw();
    EXPECT_EQ(getInteger(GL_MATRIX_MODE), GL_MODELVIEW);
    EXPECT_EQ(getInteger(GL_PROJECTION_STACK_DEPTH), 1);
    EXPECT_EQ(getMatrix(GL_PROJECTION_MATRIX), translation(0, 0, 0));
}

TEST_F(SceneGraphTest, TheWalkLeavesDrawingToCull)
{
    drawFrame();
    EXPECT_THAT(journal, ElementsAre("root.cull"));
}

TEST_F(SceneGraphTest, CountsTheNodesFoundVisibleInTheTree)
{
    ProbeNode a("a", journal);
    ProbeNode a1("a1", journal);
    ProbeNode b("b", journal);
    root.attachChild(&a);
    a.attachChild(&a1);
    root.attachChild(&b);
    drawFrame();
    EXPECT_EQ(graph.node_count, 4);
    a.visible = -1;
    drawFrame();
    EXPECT_EQ(graph.node_count, 2);
    graph.update();
    EXPECT_EQ(graph.node_count, 2);
}

TEST_F(SceneGraphTest, ACulledNodeTakesItsSubtreeOutOfTheFrame)
{
    ProbeNode a("a", journal);
    ProbeNode a1("a1", journal);
    a.translate(3, 0, 0);
    a.visible = -1;
    root.attachChild(&a);
    a.attachChild(&a1);
    drawFrame();
    EXPECT_THAT(journal, ElementsAre("root.cull", "a.cull"));
    EXPECT_EQ(worldOf(a), translation(3, 0, 0));
    EXPECT_EQ(worldOf(a1), std::vector<float>(16, 0));
}

TEST_F(SceneGraphTest, ACulledRootLeavesACountOfZero)
{
    drawFrame();
    EXPECT_EQ(graph.node_count, 1);
    root.visible = -1;
    drawFrame();
    EXPECT_EQ(graph.node_count, 0);
}

TEST_F(SceneGraphTest, OnlyMinusOneCulls)
{
    ProbeNode a("a", journal);
    root.attachChild(&a);
    for (const int result : {0, 1, 2, -2}) {
        root.visible = result;
        drawFrame();
        EXPECT_EQ(graph.node_count, 2) << result;
    }
}

TEST_F(SceneGraphTest, HiddenNodesAreUpdatedAndReceiveEvents)
{
    ProbeNode a("a", journal);
    root.visible = -1;
    root.attachChild(&a);
    drawFrame();
    graph.update();
    graph.event(new UserEvent(MOUSE_CLICK));
    EXPECT_THAT(journal, ElementsAre("root.cull", "root.doupdate", "a.doupdate", "root.userEvent",
                                     "a.userEvent"));
}

TEST_F(SceneGraphTest, TheEnvironmentAndTheLightsAreDrawnAloneBeforeTheTree)
{
    ProbeNode env("env", journal);
    ProbeNode envChild("envChild", journal);
    ProbeNode light1("light1", journal);
    ProbeNode light2("light2", journal);
    env.attachChild(&envChild);
    env.translate(0, 1, 0);
    light1.translate(0, 0, 2);
    light2.translate(0, 0, 3);
    light2.visible = -1;
    graph.setEnvNode(&env);
    graph.addLight(&light2);
    graph.addLight(&light1);
    glTranslatef(7, 0, 0);
    drawFrame();
    EXPECT_THAT(journal, ElementsAre("env.cull", "light2.cull", "light1.cull", "root.cull"));
    EXPECT_EQ(worldOf(env), translation(7, 1, 0));
    EXPECT_EQ(worldOf(light1), translation(7, 0, 2));
    EXPECT_EQ(worldOf(light2), translation(7, 0, 3));
    EXPECT_EQ(worldOf(root), translation(7, 0, 0));
    EXPECT_EQ(graph.node_count, 1);
}

TEST_F(SceneGraphTest, OnlyTheTreeIsUpdatedAndReceivesEvents)
{
    ProbeNode env("env", journal);
    ProbeNode light("light", journal);
    graph.setEnvNode(&env);
    graph.addLight(&light);
    graph.update();
    graph.event(new UserEvent(MOUSE_CLICK));
    EXPECT_THAT(journal, ElementsAre("root.doupdate", "root.userEvent"));
}

TEST_F(SceneGraphTest, WithoutARootTheEnvironmentAndTheLightsAreDrawnAndFlushed)
{
    ProbeNode env("env", journal);
    ProbeNode light("light", journal);
    graph.setRootNode(nullptr);
    graph.setEnvNode(&env);
    graph.addLight(&light);
    graph.node_count = 5;
    flushes = &journal;
    drawFrame();
    flushes = nullptr;
    EXPECT_THAT(journal, ElementsAre("env.cull", "light.cull", "flush"));
    EXPECT_EQ(graph.node_count, 0);
    journal.clear();
    graph.update();
    // The event is freed here too: the leak check of the sanitized build would tell.
    graph.event(new UserEvent(MOUSE_CLICK));
    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(SceneGraphTest, ANullLightIsSkipped)
{
    graph.addLight(nullptr);
    drawFrame();
    EXPECT_THAT(journal, ElementsAre("root.cull"));
}

TEST_F(SceneGraphTest, TheWalksDoNothingFromANullNode)
{
    UserEvent event(MOUSE_CLICK);
    graph.drawScene(nullptr);
    graph.updateScene(nullptr);
    graph.eventScene(nullptr, &event);
    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(SceneGraphTest, EventsArriveWithTheirData)
{
    class Listener : public ProbeNode {
    public:
        using ProbeNode::ProbeNode;
        std::vector<float> heard;
        void userEvent(UserEvent* event) override
        {
            EXPECT_EQ(event->getEventType(), MOUSE_CLICK);
            heard.assign(event->getEventData(), event->getEventData() + 3);
        }
    };
    Listener listener("listener", journal);
    root.attachChild(&listener);
    auto* event = new UserEvent(MOUSE_CLICK);
    event->eventData[0] = 100;
    event->eventData[1] = 200;
    event->eventData[2] = 1.25f;
    graph.event(event);
    EXPECT_THAT(listener.heard, ElementsAre(100, 200, 1.25f));
}

TEST_F(SceneGraphTest, NullEntriesAreKeptAndSkippedByAllWalks)
{
    ProbeNode a("a", journal);
    root.children = {nullptr, &a, nullptr};
    drawFrame();
    graph.update();
    graph.event(new UserEvent(MOUSE_CLICK));
    EXPECT_THAT(journal, ElementsAre("root.cull", "a.cull", "root.doupdate", "a.doupdate",
                                     "root.userEvent", "a.userEvent"));
    EXPECT_THAT(root.children, ElementsAre(nullptr, &a, nullptr));
    EXPECT_EQ(graph.node_count, 2);
}

TEST_F(SceneGraphTest, AChildAttachedInCullIsDrawnInTheSameFrame)
{
    static ProbeNode* late = nullptr;
    ProbeNode child("late", journal);
    late = &child;
    root.onCull = [](ProbeNode& node) { node.attachChild(late); };
    drawFrame();
    EXPECT_THAT(journal, ElementsAre("root.cull", "late.cull"));
}

TEST_F(SceneGraphTest, FifteenLevelsFitOnTheMatrixStack)
{
    std::vector<std::unique_ptr<ProbeNode>> chain;
    Node* parent = &root;
    root.translate(1, 0, 0);
    for (int level = 2; level <= 15; ++level) {
        chain.push_back(std::make_unique<ProbeNode>("link", journal));
        chain.back()->translate(1, 0, 0);
        parent->attachChild(chain.back().get());
        parent = chain.back().get();
    }
    // At the deepest level there is room for a node that pushes once itself.
    chain.back()->onCull = [](ProbeNode&) {
        EXPECT_EQ(getInteger(GL_MODELVIEW_STACK_DEPTH), 30);
        glPushMatrix();
        glPopMatrix();
    };
    drawFrame();
    EXPECT_EQ(graph.node_count, 15);
    EXPECT_EQ(worldOf(*parent), translation(15, 0, 0));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(SceneGraphTest, DestroyingTheGraphLeavesItsNodesAlone)
{
    auto scene = std::make_unique<SceneGraph>();
    ProbeNode light("light", journal);
    scene->setRootNode(&root);
    scene->setEnvNode(&root);
    scene->addLight(&light);
    scene.reset();
    EXPECT_THAT(journal, IsEmpty());
    EXPECT_TRUE(root.isAlive());
}

} // namespace
