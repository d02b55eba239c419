#pragma once

#include "Node.h"

/// The sprite of a boid: a textured, half-transparent square, 40 units of the boid's frame wide.
/// Its boid makes it, turns it towards its heading, and deletes it. It is drawn whenever its boid
/// is in view.
class Boider final : public Node {
public:
    bool initialized = false;
    unsigned boidGeometry = 0; ///< display list of the square, owned; 0 until the first cull
    Texture* tex = nullptr;    ///< borrows; null draws a white square

    Boider() = default;

    /// Deletes the display list. Needs: current GL context.
    ~Boider();

    /// Makes the display list. Needs: current GL context.
    void initialize();

    /// Draws and returns 1. Needs: current GL context.
    int cull() override;

    /// Draws the square over what is there. Needs: current GL context, initialize.
    /// Changes: color, blend function, 2-D texture binding (to 0); disables blending, texturing.
    void draw() override;

    void doupdate() override {}
    void drawBBox() override {}

    /// The value is shared with Environment.
    RTTI_NODE_TYPE getType() const override { return RTTI_USER0; }
    void userEvent(UserEvent*) override {}

    /// Borrows the texture. The first draw loads it.
    void addTexture(Texture* texture) override { tex = texture; }

    /// Fixed behavior: a sprite's getTexture gives null, after addTexture too. Pinned by
    /// BoiderTest.WhatABoiderHasNoUseForIsEmpty; do not correct.
    Texture* getTexture() override { return nullptr; }
    void computeBBox() override {}
    BBox* getBBox() override { return nullptr; }
    void addGeometry(Geometry*) override {}
    Geometry* getGeometry() override { return nullptr; }
    void print() override {}
    void cleanup() override {}
};
