// The three walks over flat trees of plain nodes, beside OpenSceneGraph's traversals of equal ones.
// A plain node has a transform, is always visible, and does nothing.

#include "Job.h"

#include "PivotNode.h"
#include "RootNode.h"
#include "SceneGraph.h"
#include "UserEvent.h"

#include <memory>
#include <osg/Group>
#include <osg/MatrixTransform>
#include <osg/NodeVisitor>
#include <osgGA/EventVisitor>
#include <osgUtil/CullVisitor>
#include <osgUtil/UpdateVisitor>
#include <string>
#include <vector>

namespace {

class PlainNode : public RootNode {
public:
    int cull() override { return 1; }
};

/// A root with so many plain nodes.
class Tree {
public:
    explicit Tree(int count)
    {
        for (int i = 0; i < count; ++i) {
            nodes.push_back(std::make_unique<PlainNode>());
            nodes.back()->translate(0.001f * static_cast<float>(i), 0, 0);
            root.attachChild(nodes.back().get());
        }
        graph.setRootNode(&root);
    }
    SceneGraph graph;

private:
    PlainNode root;
    std::vector<std::unique_ptr<PlainNode>> nodes;
};

/// The same as OpenSceneGraph has it, with what its viewer keeps for the three traversals. Its
/// update and event traversals visit only nodes with a callback: here each has one, as each of ours
/// has its doupdate and userEvent.
class OsgTree {
public:
    explicit OsgTree(int count)
    {
        for (int i = 0; i < count; ++i) {
            osg::ref_ptr<osg::MatrixTransform> node = new osg::MatrixTransform;
            node->setMatrix(osg::Matrix::translate(0.001 * i, 0, 0));
            node->setCullingActive(false);
            node->setUpdateCallback(callback);
            node->setEventCallback(callback);
            root->addChild(node);
        }
        root->setCullingActive(false);
    }
    void updateAll() { root->accept(*update); }
    void eventAll() { root->accept(*events); }
    void cullAll()
    {
        states->reset();
        stage->reset();
        cull->reset();
        cull->setStateGraph(states);
        cull->setRenderStage(stage);
        cull->pushViewport(viewport);
        cull->pushProjectionMatrix(projection);
        cull->pushModelViewMatrix(view, osg::Transform::ABSOLUTE_RF);
        root->accept(*cull);
        cull->popModelViewMatrix();
        cull->popProjectionMatrix();
        cull->popViewport();
    }

private:
    osg::ref_ptr<osg::NodeCallback> callback = new osg::NodeCallback;
    osg::ref_ptr<osg::Group> root = new osg::Group;
    osg::ref_ptr<osgUtil::UpdateVisitor> update = new osgUtil::UpdateVisitor;
    osg::ref_ptr<osgGA::EventVisitor> events = new osgGA::EventVisitor;
    osg::ref_ptr<osgUtil::CullVisitor> cull = new osgUtil::CullVisitor;
    osg::ref_ptr<osgUtil::StateGraph> states = new osgUtil::StateGraph;
    osg::ref_ptr<osgUtil::RenderStage> stage = new osgUtil::RenderStage;
    osg::ref_ptr<osg::Viewport> viewport = new osg::Viewport(0, 0, 740, 740);
    osg::ref_ptr<osg::RefMatrix> projection =
        new osg::RefMatrix(osg::Matrix::perspective(60, 1, 0.1, 10));
    osg::ref_ptr<osg::RefMatrix> view = new osg::RefMatrix;
};

using Walk = void (*)(Tree&);
using OsgWalk = void (OsgTree::*)();

bench::Job walk(const std::string& name, int count, Walk own, OsgWalk other)
{
    const auto tree = std::make_shared<Tree>(count);
    const auto osgTree = std::make_shared<OsgTree>(count);
    return {name + ", " + std::to_string(count) + " nodes",
            "node",
            static_cast<double>(count),
            {{"kelpix", [=] { own(*tree); }}, {"openscenegraph", [=] { ((*osgTree).*other)(); }}}};
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<bench::JobMaker> jobs;
    for (const int count : {100, 1000, 10000}) {
        jobs.emplace_back([count] {
            return walk(
                "update walk", count, [](Tree& tree) { tree.graph.update(); }, &OsgTree::updateAll);
        });
        jobs.emplace_back([count] {
            return walk(
                "draw walk", count, [](Tree& tree) { tree.graph.draw(); }, &OsgTree::cullAll);
        });
        jobs.emplace_back([count] {
            return walk(
                "event walk", count, [](Tree& tree) { tree.graph.event(new UserEvent); },
                &OsgTree::eventAll);
        });
    }
    return bench::run(argc, argv, jobs);
}
