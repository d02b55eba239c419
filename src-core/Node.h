#pragma once

#include "NodeStack.h"

#include <list>

class BBox;
struct Geometry;
class Texture;
class UserEvent;

/// What getType tells about a node. Classes share values; see each class's getType.
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

/// The base of everything that lives in the scene.
///
/// A node has a local transform (object frame to its parent's frame; column-major, see Matrix.h),
/// an ordered list of children and a life flag. SceneGraph walks the tree from the root: each frame
/// it multiplies the node's transform into GL's modelview matrix and calls cull, in which a visible
/// node draws itself; each tick it calls update; each input event goes to userEvent.
///
/// Nodes belong to whoever makes them, and must outlive the walks over their tree; those that can
/// die are made with new. After die, the next draw walk that visits their parent calls cleanup,
/// runs the Node destructor and gives the storage back. That destructor is not virtual, so cleanup
/// is the only hook of a derived class: a class whose objects can die keeps no memory beyond it.
/// The children of a dead node are not deleted with it.
///
/// The order of the virtual operations is part of the interface.
class Node {
public:
    bool alive = true;             ///< false: the next draw walk of the parent deletes this node
    NodeStack nullchildren;        ///< freed child slots, for derived classes; not used here
    std::list<Node*> children;     ///< borrows, in order of attachment; may hold null
    Node* parent = nullptr;        ///< borrows; null until attached
    float viewpoint[2] = {};       ///< the viewer's x and y in this node's frame, each negated
    float transformmat[16];        ///< local transform, the identity at first
    float worldmat[16] = {};       ///< object-to-eye transform of the last frame that reached it
    const char* name = "noname";   ///< borrows
    void (*updateptr)(Node*) = {}; ///< replaces doupdate unless null
    float pscale = 0;              ///< scale for nodes that draw in screen units; not set here

    Node();
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;
    ~Node() = default;

    /// Post-multiplies the local transform by a translation, as glTranslatef would: the newest
    /// operation acts first on the node's geometry, in the node's own frame.
    virtual void translate(float x, float y, float z);

    /// Post-multiplies by a scaling, as glScalef would.
    virtual void scale(float x, float y, float z);

    /// Post-multiplies by a rotation of \p angle degrees about (x, y, z); the angle comes last.
    virtual void rotate(float x, float y, float z, float angle);

    /// Decides whether the node is visible, and draws it if so. Called once a frame with the node's
    /// transform in GL's modelview matrix. Makes GL resources on the first call.
    /// \return -1 to skip this node and its whole subtree in this frame, else 1
    virtual int cull() = 0;

    /// Issues the node's GL calls. The walk never calls it: cull does.
    virtual void draw() = 0;

    /// One step of the node's simulation.
    virtual void doupdate() = 0;

    virtual void drawBBox() = 0;
    virtual RTTI_NODE_TYPE getType() const = 0;

    /// Receives an input event. Must neither keep nor free it.
    virtual void userEvent(UserEvent* event) = 0;

    virtual void addTexture(Texture* texture) = 0;
    virtual Texture* getTexture() = 0;
    virtual void computeBBox() = 0;
    virtual BBox* getBBox() = 0;
    virtual void addGeometry(Geometry* geometry) = 0;
    virtual Geometry* getGeometry() = 0;
    virtual void print() = 0;

    /// Releases what a derived class holds; called once, just before a dead node is deleted.
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

    /// Marks the node dead. It stays in its parent's list until the next draw walk visits it there.
    void die() { alive = false; }

    /// Notes that child slot \p index is free.
    void appendNull(int index) { nullchildren.push(index); }

private:
    void multiply(const float* elementary);
};
