#pragma once

#include "Node.h"

/// The node that the mouse turns. It is never culled, draws nothing, and keeps the viewer's
/// position in viewpoint for its children.
class PivotNode : public Node {
public:
    /// Draws and returns 1. Needs: current GL context; reads its modelview matrix.
    int cull() override;

    /// Stores the viewer's x and y in this node's frame, each negated, into viewpoint.
    void draw() override;

    void doupdate() override {}
    void drawBBox() override {}
    RTTI_NODE_TYPE getType() const override { return RTTI_PIVOT; }
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
