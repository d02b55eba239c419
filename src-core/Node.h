#pragma once

#include "NodeStack.h"

#include <list>

class BBox;
struct Geometry;
class Texture;
class UserEvent;

/// What getType tells about a node: a hint for tools that count or print nodes, not a class.
/// Nothing in the framework depends on it, and classes share values:
///
/// | Value         | Classes                 |
/// |---------------|-------------------------|
/// | RTTI_PIVOT    | RootNode, PivotNode     |
/// | RTTI_PARTICLE | Boid                    |
/// | RTTI_USER0    | Environment, Boider     |
/// | RTTI_USER1    | Sensor, SensorRep       |
/// | RTTI_USER2    | Creature                |
/// | RTTI_USER9    | PlainNode, the examples |
///
/// The others are free.
enum RTTI_NODE_TYPE {
    RTTI_SCENE,
    RTTI_PIVOT,
    RTTI_PARTICLE,
    RTTI_TERRAIN,
    RTTI_SPECIAL,
    RTTI_USER0,
    RTTI_USER1,
    RTTI_USER2,
    RTTI_USER3,
    RTTI_USER4,
    RTTI_USER5,
    RTTI_USER6,
    RTTI_USER7,
    RTTI_USER8,
    RTTI_USER9,
};

/// The base of everything that lives in the scene. Derive from PlainNode to override only what a
/// node needs.
///
/// A node has a local transform (from the node's own frame to its parent's; column-major, see
/// Matrix.h), an ordered list of children and a life flag. SceneGraph traverses the tree from the
/// root: once a frame it multiplies the node's transform into GL's modelview matrix and calls cull,
/// in which a visible node draws itself; at each update it calls update; it hands each input event
/// to userEvent. Besides these the framework calls only cleanup, and translate, scale and rotate of
/// root and pivot. The others are for the program's own use.
///
/// Nodes belong to whoever makes them, and must outlive the traversals of their tree. A node that
/// can die is made with new: after die, the next draw traversal that visits its parent calls
/// cleanup, runs the destructor of Node and frees the storage. That destructor is not virtual, so
/// the derived class's destructor does not run: members that own memory leak unless cleanup
/// releases it. The children of a dead node are not deleted with it.
///
/// The order of the virtual operations is part of the interface.
///
/// \par Example
/// \snippet hello-node.cpp node
class Node {
public:
    bool alive = true;             ///< false: the next draw of the parent deletes this node
    NodeStack nullchildren;        ///< freed child slots, for derived classes; not used here
    std::list<Node*> children;     ///< borrows, in order of attachment; may hold null
    Node* parent = nullptr;        ///< borrows; null until attached
    float viewpoint[2] = {};       ///< the viewer's x and y in this node's frame, each negated
    float transformmat[16];        ///< local transform, the identity at first
    float worldmat[16] = {};       ///< object-to-eye transform of the last frame that reached it
    const char* name = "noname";   ///< borrows
    void (*updateptr)(Node*) = {}; ///< replaces doupdate unless null
    float pscale = 0;              ///< scale for nodes that draw in screen units; not used here

    Node();
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;
    /// Fixed behavior: the destructor of Node is not virtual, so that a dead node is deleted
    /// without running the destructor of its class. Pinned by NodeTest.TheDestructorIsNotVirtual;
    /// do not correct.
    ~Node() = default;

    /// Post-multiplies the local transform by a translation, as glTranslatef would: the newest
    /// operation acts first on the node's geometry, in the node's own frame. The window calls it on
    /// the root for a pan.
    virtual void translate(float x, float y, float z);

    /// Post-multiplies by a scaling, as glScalef would. The window calls it on the root for a zoom.
    virtual void scale(float x, float y, float z);

    /// Post-multiplies by a rotation of \p angle degrees about (x, y, z); the angle comes last. The
    /// window calls it on the pivot for a turn.
    virtual void rotate(float x, float y, float z, float angle);

    /// Decides whether the node is visible, and draws it if so: the framework does not call draw.
    /// Called by the draw traversal, once a frame, with the node's transform in GL's modelview
    /// matrix. Makes GL resources on the first call. Needs: current GL context.
    /// \return -1 to skip this node and its whole subtree in this frame, else 1
    virtual int cull() = 0;

    /// Issues the node's GL calls. Not called by the framework: cull calls it.
    virtual void draw() = 0;

    /// One step of the node's simulation. Called by update, once per update of the scene, unless an
    /// update function is set. There may be no GL context.
    virtual void doupdate() = 0;

    /// Draws the bounding box, for debugging. Not called by the framework.
    virtual void drawBBox() = 0;

    /// Tells what kind of node this is. Not called by the framework.
    virtual RTTI_NODE_TYPE getType() const = 0;

    /// Receives an input event; must neither keep nor free it. Called by the event traversal, for
    /// visible and invisible nodes. There may be no GL context.
    virtual void userEvent(UserEvent* event) = 0;

    /// Gives the node a texture to draw with. Not called by the framework. Each class says whether
    /// it uses the texture and who owns it.
    virtual void addTexture(Texture* texture) = 0;

    /// \return the node's texture, or null. Not called by the framework.
    virtual Texture* getTexture() = 0;

    /// Computes the box that getBBox returns. Not called by the framework.
    virtual void computeBBox() = 0;

    /// \return the node's bounding box in its own frame, or null. Not called by the framework.
    virtual BBox* getBBox() = 0;

    /// Gives the node a shape to draw. Not called by the framework.
    virtual void addGeometry(Geometry* geometry) = 0;

    /// \return the node's shape, or null. Not called by the framework.
    virtual Geometry* getGeometry() = 0;

    /// Prints the node, for debugging. Not called by the framework.
    virtual void print() = 0;

    /// Releases what a derived class holds. Called by the draw traversal, once, just before it
    /// deletes the node because it has died. Needs: current GL context.
    virtual void cleanup() = 0;

    /// Appends \p child (borrowed: it must outlive this node, or die) and becomes its parent. Not
    /// checked for an earlier parent or a cycle; a null child is ignored. Each level of the tree
    /// takes two entries of GL's modelview stack, which holds 32: no node deeper than 15 levels.
    void attachChild(Node* child);

    void setParent(Node* node) { parent = node; }
    Node* getParent() { return parent; }

    /// \return a pointer into this object, to iterate and modify
    std::list<Node*>* getChildList() { return &children; }

    /// \return a pointer to the 16 floats of the local transform
    float* glTransform() { return transformmat; }

    /// \return a pointer to the 16 floats of worldmat
    float* glWorldMatrix() { return worldmat; }

    /// \return a pointer to the 2 floats of viewpoint
    float* getViewPoint() { return viewpoint; }

    /// \return a pointer to pscale
    float* parallelScale() { return &pscale; }

    const char* getName() const { return name; }

    /// Keeps the pointer: the text must outlive the node.
    void setName(const char* text) { name = text; }

    /// Sets a function that update calls instead of doupdate; null restores doupdate.
    void setUpdateFunc(void (*function)(Node*)) { updateptr = function; }

    /// Calls the update function if one is set, else doupdate.
    void update();

    bool isAlive() const { return alive; }

    /// Marks the node dead. It stays in its parent's list, and is updated, until a draw traversal
    /// visits its parent.
    void die() { alive = false; }

    /// Pushes \p index onto nullchildren: child slot \p index is free.
    void appendNull(int index) { nullchildren.push(index); }

private:
    void multiply(const float* elementary);
};
