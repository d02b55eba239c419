#pragma once

#include "Node.h"

/// A node that answers every operation: it is visible, draws nothing and does nothing. Derive from
/// it and override what the new node needs: draw to show something, doupdate to move.
///
/// \par Example
/// \snippet hello-node.cpp node
class PlainNode : public Node {
public:
    /// Calls draw and returns 1: always visible.
    int cull() override
    {
        draw();
        return 1;
    }

    void draw() override {}
    void doupdate() override {}
    void drawBBox() override {}
    RTTI_NODE_TYPE getType() const override { return RTTI_USER9; }
    void userEvent(UserEvent*) override {}
    void addTexture(Texture*) override {}
    Texture* getTexture() override { return nullptr; }
    void computeBBox() override {}
    BBox* getBBox() override { return nullptr; }
    void addGeometry(Geometry*) override {}
    Geometry* getGeometry() override { return nullptr; }
    void print() override {}
    void cleanup() override {}
};
