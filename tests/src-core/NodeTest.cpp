#include "Node.h"
#include "NodeStack.h"
#include "PivotNode.h"
#include "PlainNode.h"
#include "RootNode.h"
#include "UserEvent.h"

#include "GLTest.h"
#include "ProbeNode.h"

#include <array>
#include <cstring>
#include <gmock/gmock.h>
#include <type_traits>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::FloatNear;
using testing::Pointwise;

constexpr float IDENTITY[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

std::vector<float> transformOf(Node& node)
{
    return {node.glTransform(), node.glTransform() + 16};
}

TEST(NodeStackTest, TheLastValuePushedIsTheFirstPopped)
{
    NodeStack stack;
    EXPECT_EQ(stack.size(), 0);
    stack.push(3);
    stack.push(7);
    EXPECT_EQ(stack.size(), 2);
    EXPECT_EQ(stack.pop(), 7);
    EXPECT_EQ(stack.pop(), 3);
    EXPECT_EQ(stack.size(), 0);
}

TEST(NodeStackTest, TheTopIsTheFrontOfTheList)
{
    NodeStack stack;
    stack.push(1);
    stack.push(2);
    EXPECT_THAT(stack.stack, ElementsAre(2, 1));
}

TEST(NodeTest, StartsAliveUnattachedAndUntransformed)
{
    const RootNode node;
    EXPECT_TRUE(node.isAlive());
    EXPECT_EQ(node.nullchildren.size(), 0);
    EXPECT_TRUE(node.children.empty());
    EXPECT_EQ(node.parent, nullptr);
    EXPECT_THAT(node.transformmat, ElementsAreArray(IDENTITY));
    EXPECT_STREQ(node.getName(), "noname");
    EXPECT_EQ(node.updateptr, nullptr);
}

TEST(NodeTest, KeepsItsFieldsInOrder)
{
    RootNode node;
    const std::array<const void*, 10> fields = {
        &node.alive,        &node.nullchildren, &node.children, &node.parent,    &node.viewpoint,
        &node.transformmat, &node.worldmat,     &node.name,     &node.updateptr, &node.pscale};
    EXPECT_TRUE(std::is_sorted(fields.begin(), fields.end()));
}

TEST(NodeTest, TypeTagsKeepTheirValues)
{
    EXPECT_EQ(RTTI_SCENE, 0);
    EXPECT_EQ(RTTI_PIVOT, 1);
    EXPECT_EQ(RTTI_PARTICLE, 2);
    EXPECT_EQ(RTTI_TERRAIN, 3);
    EXPECT_EQ(RTTI_SPECIAL, 4);
    EXPECT_EQ(RTTI_USER0, 5);
    EXPECT_EQ(RTTI_USER1, 6);
    EXPECT_EQ(RTTI_USER2, 7);
    EXPECT_EQ(RTTI_USER9, 14);
}

TEST(NodeTest, TheNewestOperationActsFirst)
{
    PivotNode translated;
    translated.translate(1, 0, 0);
    translated.rotate(0, 0, 1, 90);
    EXPECT_EQ(translated.transformmat[12], 1);
    EXPECT_EQ(translated.transformmat[13], 0);
    EXPECT_EQ(translated.transformmat[14], 0);

    PivotNode rotated;
    rotated.rotate(0, 0, 1, 90);
    rotated.translate(1, 0, 0);
    EXPECT_NEAR(rotated.transformmat[12], 0, 1e-6);
    EXPECT_NEAR(rotated.transformmat[13], 1, 1e-6);
    EXPECT_EQ(rotated.transformmat[14], 0);
}

TEST(NodeTest, AScalingMovesTheTranslationThatFollowsIt)
{
    RootNode node;
    node.scale(1.2f, 1.2f, 1);
    node.translate(-0.5f, -0.5f, 0);
    const float expected[16] = {1.2f, 0, 0, 0, 0, 1.2f, 0, 0, 0, 0, 1, 0, -0.6f, -0.6f, 0, 1};
    EXPECT_THAT(node.transformmat, ElementsAreArray(expected));
}

TEST(NodeTest, AttachChildAppendsAndSetsTheParent)
{
    RootNode root;
    PivotNode first;
    PivotNode second;
    root.attachChild(&first);
    root.attachChild(&second);
    EXPECT_THAT(root.children, ElementsAre(&first, &second));
    EXPECT_EQ(root.getChildList(), &root.children);
    EXPECT_EQ(first.getParent(), &root);
    EXPECT_EQ(second.getParent(), &root);
    EXPECT_EQ(root.getParent(), nullptr);
}

TEST(NodeTest, AttachChildKeepsAChildWithItsFormerParentToo)
{
    RootNode former;
    RootNode root;
    PivotNode child;
    former.attachChild(&child);
    root.attachChild(&child);
    EXPECT_THAT(former.children, ElementsAre(&child));
    EXPECT_THAT(root.children, ElementsAre(&child));
    EXPECT_EQ(child.getParent(), &root);
}

TEST(NodeTest, AttachChildIgnoresNull)
{
    RootNode root;
    root.attachChild(nullptr);
    EXPECT_TRUE(root.children.empty());
}

TEST(NodeTest, SetParentLeavesTheListsAlone)
{
    RootNode root;
    PivotNode node;
    node.setParent(&root);
    EXPECT_EQ(node.getParent(), &root);
    EXPECT_TRUE(root.children.empty());
}

TEST(NodeTest, AccessorsPointIntoTheNode)
{
    RootNode node;
    EXPECT_EQ(node.glTransform(), node.transformmat);
    EXPECT_EQ(node.glWorldMatrix(), node.worldmat);
    EXPECT_EQ(node.getViewPoint(), node.viewpoint);
    EXPECT_EQ(node.parallelScale(), &node.pscale);
}

TEST(NodeTest, SetNameKeepsThePointer)
{
    char text[] = "fish";
    RootNode node;
    node.setName(text);
    EXPECT_EQ(node.getName(), text);
    text[0] = 'd';
    EXPECT_STREQ(node.getName(), "dish");
}

TEST(NodeTest, UpdateCallsTheStepOfTheClass)
{
    Journal journal;
    ProbeNode node("a", journal);
    node.update();
    EXPECT_THAT(journal, ElementsAre("a.doupdate"));
}

TEST(NodeTest, AnUpdateFunctionReplacesTheStepOfTheClass)
{
    Journal journal;
    ProbeNode node("a", journal);
    node.setUpdateFunc([](Node* n) { n->setName("updated"); });
    node.update();
    EXPECT_STREQ(node.getName(), "updated");
    EXPECT_TRUE(journal.empty());

    node.setUpdateFunc(nullptr);
    node.update();
    EXPECT_THAT(journal, ElementsAre("updated.doupdate"));
}

TEST(NodeTest, DieOnlyClearsTheLifeFlag)
{
    Journal journal;
    RootNode root;
    ProbeNode child("a", journal);
    root.attachChild(&child);
    child.die();
    EXPECT_FALSE(child.isAlive());
    EXPECT_THAT(root.children, ElementsAre(&child));
    EXPECT_EQ(child.getParent(), &root);
    EXPECT_TRUE(journal.empty());
}

TEST(NodeTest, AppendNullRemembersTheSlot)
{
    RootNode node;
    node.appendNull(4);
    node.appendNull(9);
    EXPECT_THAT(node.nullchildren.stack, ElementsAre(9, 4));
}

/// Notes the three operations that Node implements too.
class SlotProbe : public ProbeNode {
public:
    using ProbeNode::ProbeNode;
    void translate(float, float, float) override { note("translate"); }
    void scale(float, float, float) override { note("scale"); }
    void rotate(float, float, float, float) override { note("rotate"); }
};

/// Calls an operation by its slot, as code compiled elsewhere does: in the Itanium C++ ABI an
/// object starts with the address of its class's table, and an operation takes the object as its
/// first argument.
template<typename Result = void, typename... Arguments>
Result callSlot(Node& node, std::size_t slot, Arguments... arguments)
{
    void** table = nullptr;
    std::memcpy(&table, static_cast<const void*>(&node), sizeof table);
    return reinterpret_cast<Result (*)(Node*, Arguments...)>(table[slot])(&node, arguments...);
}

TEST(NodeTest, TheVirtualOperationsKeepTheirSlots)
{
    Journal journal;
    SlotProbe node("a", journal);
    UserEvent event(MOUSE_CLICK);
    callSlot(node, 0, 1.0f, 2.0f, 3.0f);
    callSlot(node, 1, 1.0f, 2.0f, 3.0f);
    callSlot(node, 2, 0.0f, 0.0f, 1.0f, 90.0f);
    EXPECT_EQ(callSlot<int>(node, 3), 1);
    callSlot(node, 4);
    callSlot(node, 5);
    callSlot(node, 6);
    EXPECT_EQ(callSlot<RTTI_NODE_TYPE>(node, 7), RTTI_SPECIAL);
    callSlot(node, 8, &event);
    callSlot(node, 9, static_cast<Texture*>(nullptr));
    EXPECT_EQ(callSlot<Texture*>(node, 10), nullptr);
    callSlot(node, 11);
    EXPECT_EQ(callSlot<BBox*>(node, 12), nullptr);
    callSlot(node, 13, static_cast<Geometry*>(nullptr));
    EXPECT_EQ(callSlot<Geometry*>(node, 14), nullptr);
    callSlot(node, 15);
    callSlot(node, 16);
    EXPECT_THAT(journal, ElementsAre("a.translate", "a.scale", "a.rotate", "a.cull", "a.draw",
                                     "a.doupdate", "a.drawBBox", "a.getType", "a.userEvent",
                                     "a.addTexture", "a.getTexture", "a.computeBBox", "a.getBBox",
                                     "a.addGeometry", "a.getGeometry", "a.print", "a.cleanup"));
}

TEST(NodeTest, TheDestructorIsNotVirtual)
{
    EXPECT_TRUE(std::is_polymorphic_v<Node>);
    EXPECT_FALSE(std::has_virtual_destructor_v<Node>);
    EXPECT_FALSE(std::has_virtual_destructor_v<RootNode>);
    EXPECT_FALSE(std::has_virtual_destructor_v<PivotNode>);
}

class NodeGLTest : public GLTest {};

TEST_F(NodeGLTest, OperationsComposeAsGLs)
{
    RootNode node;
    node.translate(0.5f, -2, 3);
    node.rotate(1, 2, -0.5f, 33);
    node.scale(2, 0.25f, -1);
    node.rotate(0, 1, 0, -120);
    node.translate(7, 0, -0.125f);

    glTranslatef(0.5f, -2, 3);
    glRotatef(33, 1, 2, -0.5f);
    glScalef(2, 0.25f, -1);
    glRotatef(-120, 0, 1, 0);
    glTranslatef(7, 0, -0.125f);
    EXPECT_THAT(transformOf(node), Pointwise(FloatNear(2e-5f), getMatrix(GL_MODELVIEW_MATRIX)));
}

/// The nodes that give a scene its structure; both behave alike.
template<typename Structural>
class StructuralNodeTest : public GLTest {
};
using StructuralNodes = testing::Types<RootNode, PivotNode>;
TYPED_TEST_SUITE(StructuralNodeTest, StructuralNodes);

TYPED_TEST(StructuralNodeTest, AddsNoFields)
{
    EXPECT_EQ(sizeof(TypeParam), sizeof(Node));
}

TYPED_TEST(StructuralNodeTest, HasTheTypeOfAPivot)
{
    EXPECT_EQ(TypeParam().getType(), RTTI_PIVOT);
}

TYPED_TEST(StructuralNodeTest, CullFindsTheViewersOppositeInItsFrame)
{
    TypeParam node;
    glTranslatef(2, -3, 4);
    EXPECT_EQ(node.cull(), 1);
    EXPECT_THAT(node.viewpoint, ElementsAre(2, -3));
}

TYPED_TEST(StructuralNodeTest, UnderAScalingTheViewPointIsTheInverseTranslationTimesTheScale)
{
    TypeParam node;
    glScalef(4, 4, 4);
    glTranslatef(1, 2, 3);
    node.draw();
    EXPECT_THAT(node.viewpoint, ElementsAre(4, 8));
}

TYPED_TEST(StructuralNodeTest, TheViewPointKeepsToItsTwoFloats)
{
    TypeParam node;
    node.transformmat[0] = 99;
    glTranslatef(2, -3, 4);
    node.draw();
    EXPECT_EQ(node.transformmat[0], 99);
}

TYPED_TEST(StructuralNodeTest, IsNeverCulledAndDrawsNothing)
{
    TypeParam node;
    glTranslatef(1000, 0, 0);
    const auto drawn = Feedback::of([&node] { EXPECT_EQ(node.cull(), 1); });
    EXPECT_TRUE(drawn.empty());
}

TYPED_TEST(StructuralNodeTest, CullDrawsThroughTheTable)
{
    class Drawn : public TypeParam {
    public:
        int draws = 0;
        void draw() override { ++draws; }
    };
    Drawn node;
    EXPECT_EQ(node.cull(), 1);
    EXPECT_EQ(node.draws, 1);
}

/// Calls what a node without a use for it answers with nothing.
void expectThatNothingHappens(Node& node)
{
    UserEvent event(MOUSE_CLICK);
    testing::internal::CaptureStdout();
    node.doupdate();
    node.drawBBox();
    node.userEvent(&event);
    node.addTexture(nullptr);
    node.computeBBox();
    node.addGeometry(nullptr);
    node.print();
    node.cleanup();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(node.getTexture(), nullptr);
    EXPECT_EQ(node.getBBox(), nullptr);
    EXPECT_EQ(node.getGeometry(), nullptr);
    EXPECT_TRUE(node.isAlive());
    EXPECT_THAT(node.transformmat, ElementsAreArray(IDENTITY));
}

TYPED_TEST(StructuralNodeTest, TheOtherOperationsDoNothing)
{
    TypeParam node;
    expectThatNothingHappens(node);
}

TEST(PlainNodeTest, IsAlwaysVisibleAndDrawsInItsCull)
{
    class Drawn : public PlainNode {
    public:
        int draws = 0;
        void draw() override { ++draws; }
    };
    Drawn node;
    EXPECT_EQ(node.cull(), 1);
    EXPECT_EQ(node.draws, 1);
}

TEST(PlainNodeTest, TheOtherOperationsDoNothing)
{
    PlainNode node;
    expectThatNothingHappens(node);
    EXPECT_EQ(node.getType(), RTTI_USER9);
    EXPECT_EQ(sizeof(PlainNode), sizeof(Node));
}

} // namespace
