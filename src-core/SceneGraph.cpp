#include "SceneGraph.h"

#include "Node.h"
#include "Prefetch.h"
#include "UserEvent.h"

#include <GL/glew.h>
#include <new>

namespace {

/// Multiplies the node's transform into the modelview matrix and stores the result in worldmat.
void enterFrame(Node* node)
{
    glPushMatrix();
    glMultMatrixf(node->glTransform());
    glGetFloatv(GL_MODELVIEW_MATRIX, node->glWorldMatrix());
}

void drawAlone(Node* node)
{
    enterFrame(node);
    node->cull();
    glPopMatrix();
}

/// Bytes of a derived node that are worth a prefetch.
constexpr std::size_t DERIVED = 128;

bool isDead(Node* node)
{
    return node != nullptr && !node->isAlive();
}

/// Deletes a node that has died. Its destructor is not virtual, so its class and size are not known
/// here: only Node's destructor runs, and the unsized operator delete frees the storage.
void deleteDead(Node* node)
{
    node->cleanup();
    node->Node::~Node();
    ::operator delete(static_cast<void*>(node));
}

} // namespace

void SceneGraph::draw()
{
    glMatrixMode(GL_MODELVIEW);
    if (envNode != nullptr) {
        drawAlone(envNode);
    }
    for (Node* light : listOfLights) {
        if (light != nullptr) {
            drawAlone(light);
        }
    }
    node_count = 0;
    if (rootNode != nullptr) {
        drawScene(rootNode);
    }
    glFlush();
}

void SceneGraph::drawScene(Node* node)
{
    if (node == nullptr) {
        return;
    }
    enterFrame(node);
    if (node->cull() == -1) {
        glPopMatrix();
        return;
    }
    ++node_count;
    std::list<Node*>& children = *node->getChildList();
    for (auto child = children.begin(); child != children.end();) {
        glPushMatrix();
        if (isDead(*child)) {
            deleteDead(*child);
            *child = nullptr;
            child = children.erase(child);
        } else {
            drawScene(*child);
            ++child;
        }
        glPopMatrix();
    }
    glPopMatrix();
}

void SceneGraph::update()
{
    updateScene(rootNode);
}

void SceneGraph::updateScene(Node* node)
{
    if (node == nullptr) {
        return;
    }
    // Also when a node throws, and for a traversal that a node starts within another: no later step
    // is mistaken for the one that would have come next.
    struct End {
        ~End() { currentStep = {nullptr, currentStep.number + 2}; }
    };
    const End end;
    updateTree(node);
}

void SceneGraph::updateTree(Node* node)
{
    currentStep = {node->updateptr == nullptr ? node : nullptr, currentStep.number + 1};
    node->update();
    std::list<Node*>& children = *node->getChildList();
    for (auto child = children.begin(); child != children.end(); ++child) {
        if (const auto next = std::next(child); next != children.end()) {
            prefetch(*next, sizeof(Node) + DERIVED);
        }
        if (*child != nullptr) {
            updateTree(*child);
        }
    }
}

void SceneGraph::event(UserEvent* ev)
{
    eventScene(rootNode, ev);
    delete ev;
}

void SceneGraph::eventScene(Node* node, UserEvent* ev)
{
    if (node == nullptr) {
        return;
    }
    node->userEvent(ev);
    for (Node* child : *node->getChildList()) {
        eventScene(child, ev);
    }
}
