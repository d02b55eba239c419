#pragma once

#include <cstdint>
#include <vector>

class Node;
class UserEvent;

/// A moment of the update traversals, of all scene graphs together.
struct UpdateStep {
    /// Whose doupdate the traversal calls, or has called last; only to be compared. Null at a node
    /// with an update function, and after a traversal.
    const Node* node = nullptr;
    std::uint64_t number = 0; ///< goes up by 1 for each node, and by 2 as a traversal ends
};

/// The entry points of a scene and the three traversals of its tree: drawing, updating, events.
/// Owns no node. All traversals run on one thread, never one within another.
///
/// \par Example
/// \snippet SceneWindow.cpp scene
class SceneGraph {
public:
    Node* pivotNode = nullptr;       ///< borrows; what the mouse turns; not used here
    Node* rootNode = nullptr;        ///< borrows; where every traversal starts
    Node* envNode = nullptr;         ///< borrows; drawn alone before the tree, without its children
    std::vector<Node*> listOfLights; ///< borrows; drawn before the tree, in this order
    int node_count = 0;              ///< nodes found visible in the tree by the last draw

    void setRootNode(Node* node) { rootNode = node; }
    Node* getRootNode() { return rootNode; }
    void setPivotNode(Node* node) { pivotNode = node; }
    Node* getPivotNode() { return pivotNode; }
    void setEnvNode(Node* node) { envNode = node; }
    void addLight(Node* node) { listOfLights.push_back(node); }

    /// Draws one frame: the environment node, the lights, then the tree. Deletes dead children
    /// whose parent is visible (see Node). Then flushes GL. Needs: current GL context with the view
    /// transform in the modelview matrix. Changes: selects the modelview matrix; the nodes may
    /// change other state. Restores: matrix stack.
    void draw();

    /// Updates every node of the tree once, parents before children. Dead nodes are updated too.
    void update();

    /// Hands \p ev to every node of the tree, visible or not, parents before children.
    /// Takes the event (made with new) and frees it.
    void event(UserEvent* ev);

    /// The traversals of draw, update and event, from any node; they do nothing for a null node.
    void drawScene(Node* node);
    void updateScene(Node* node);
    void eventScene(Node* node, UserEvent* ev);

    /// Where the update traversals are. A node whose results another node may use can tell from
    /// this which nodes have been updated in between: a traversal calls the code of no others.
    /// \return the current step, which changes with the traversal
    static const UpdateStep& updateStep() { return currentStep; }

private:
    static void updateTree(Node* node);

    static inline UpdateStep currentStep;
};
