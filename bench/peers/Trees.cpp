#include "Peers.h"

#include <osg/Group>
#include <osg/MatrixTransform>
#include <osg/NodeVisitor>
#include <osgGA/EventVisitor>
#include <osgUtil/CullVisitor>
#include <osgUtil/UpdateVisitor>

namespace bench::peers {
namespace {

/// A root with so many nodes, and what the viewer keeps for the three traversals. The
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

std::vector<Contender> traversal(int count, void (OsgTree::*operation)())
{
    const auto tree = std::make_shared<OsgTree>(count);
    return {{"openscenegraph", [=] { ((*tree).*operation)(); }}};
}

} // namespace

std::vector<Contender> updates(int nodes)
{
    return traversal(nodes, &OsgTree::updateAll);
}

std::vector<Contender> draws(int nodes)
{
    return traversal(nodes, &OsgTree::cullAll);
}

std::vector<Contender> events(int nodes)
{
    return traversal(nodes, &OsgTree::eventAll);
}

} // namespace bench::peers
