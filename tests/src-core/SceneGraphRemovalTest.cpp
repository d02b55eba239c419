#include "SceneGraph.h"

#include "DrawnGraph.h"
#include "UserEvent.h"

#include <array>
#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// What became of the parts of a mortal node.
struct Fate {
    int cleanups = 0;
    int destroyed = 0;
};

/// A node that can die. The memory it holds is released in cleanup, its destructor must not run.
class Mortal : public ProbeNode {
public:
    Fate& fate;
    float* memory = new float[1000];
    std::array<float, 1000> bulk{}; // larger than Node: the storage's size is the derived class's

    Mortal(const char* label, Journal& notes, Fate& told) : ProbeNode(label, notes), fate(told) {}
    ~Mortal() { ++fate.destroyed; }
    void cleanup() override
    {
        ProbeNode::cleanup();
        ++fate.cleanups;
        delete[] memory;
        memory = nullptr;
    }
};

TEST_F(SceneGraphTest, ADeadChildIsCleanedUpOnceAndDeletedAsABareNode)
{
    Fate fate;
    auto* mortal = new Mortal("mortal", journal, fate);
    // Released by the Node destructor, or the leak check of the sanitized build would tell.
    mortal->children.push_back(nullptr);
    mortal->appendNull(1);
    ProbeNode b("b", journal);
    root.attachChild(mortal);
    root.attachChild(&b);
    mortal->die();
    drawFrame();
    EXPECT_EQ(fate.cleanups, 1);
    EXPECT_EQ(fate.destroyed, 0);
    EXPECT_THAT(root.children, ElementsAre(&b));
    EXPECT_THAT(journal, ElementsAre("root.cull", "mortal.cleanup", "b.cull"));
    EXPECT_EQ(graph.node_count, 2);
    drawFrame();
    EXPECT_EQ(fate.cleanups, 1);
}

TEST_F(SceneGraphTest, AChildThatDiesInAnUpdateStaysUntilTheNextDraw)
{
    Fate fate;
    auto* mortal = new Mortal("mortal", journal, fate);
    mortal->onUpdate = [](ProbeNode& node) { node.die(); };
    root.attachChild(mortal);
    graph.update();
    EXPECT_THAT(root.children, ElementsAre(mortal));
    EXPECT_EQ(fate.cleanups, 0);
    // Dead nodes are still updated and receive events.
    graph.update();
    graph.event(new UserEvent(MOUSE_CLICK));
    EXPECT_THAT(journal, ElementsAre("root.doupdate", "mortal.doupdate", "root.doupdate",
                                     "mortal.doupdate", "root.userEvent", "mortal.userEvent"));
    drawFrame();
    EXPECT_THAT(root.children, IsEmpty());
    EXPECT_EQ(fate.cleanups, 1);
}

TEST_F(SceneGraphTest, AChildThatDiesInItsCullIsDeletedByTheNextDraw)
{
    Fate fate;
    auto* mortal = new Mortal("mortal", journal, fate);
    mortal->onCull = [](ProbeNode& node) { node.die(); };
    root.attachChild(mortal);
    drawFrame();
    EXPECT_THAT(root.children, ElementsAre(mortal));
    EXPECT_EQ(graph.node_count, 2);
    drawFrame();
    EXPECT_THAT(root.children, IsEmpty());
}

TEST_F(SceneGraphTest, ConsecutiveDeadChildrenGoInOneDraw)
{
    Fate fate;
    ProbeNode alive("alive", journal);
    for (const char* name : {"first", "second"}) {
        auto* mortal = new Mortal(name, journal, fate);
        mortal->die();
        root.attachChild(mortal);
    }
    root.attachChild(&alive);
    for (const char* name : {"third", "last"}) {
        auto* mortal = new Mortal(name, journal, fate);
        mortal->die();
        root.attachChild(mortal);
    }
    drawFrame();
    EXPECT_THAT(root.children, ElementsAre(&alive));
    EXPECT_THAT(journal, ElementsAre("root.cull", "first.cleanup", "second.cleanup", "alive.cull",
                                     "third.cleanup", "last.cleanup"));
    EXPECT_EQ(fate.destroyed, 0);
}

TEST_F(SceneGraphTest, ADeadChildUnderACulledParentStays)
{
    Fate fate;
    auto* mortal = new Mortal("mortal", journal, fate);
    ProbeNode a("a", journal);
    root.attachChild(&a);
    a.attachChild(mortal);
    mortal->die();
    a.visible = -1;
    drawFrame();
    EXPECT_THAT(a.children, ElementsAre(mortal));
    EXPECT_EQ(fate.cleanups, 0);
    a.visible = 1;
    drawFrame();
    EXPECT_THAT(a.children, IsEmpty());
    EXPECT_EQ(fate.cleanups, 1);
}

TEST_F(SceneGraphTest, TheChildrenOfADeadNodeLiveOn)
{
    Fate fate;
    auto* mortal = new Mortal("mortal", journal, fate);
    ProbeNode child("child", journal);
    root.attachChild(mortal);
    mortal->attachChild(&child);
    mortal->die();
    drawFrame();
    EXPECT_THAT(journal, ElementsAre("root.cull", "mortal.cleanup"));
    EXPECT_TRUE(child.isAlive());
}

TEST_F(SceneGraphTest, ADeadNodeAtTheTopIsDrawnOn)
{
    root.die();
    drawFrame();
    EXPECT_THAT(journal, ElementsAre("root.cull"));
    EXPECT_EQ(graph.node_count, 1);
}

} // namespace
