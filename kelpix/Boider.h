#pragma once

#include "Node.h"

/// The sprite of a boid: a textured, half-transparent square of 40 units of the boid's frame. Its
/// boid makes it, turns it towards its heading, and deletes it. Always drawn when it is reached.
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
    /// Changes: colour, blend function, 2-D texture binding (to 0); disables blending, texturing.
    void draw() override;

    void doupdate() override {}
    void drawBBox() override {}
    RTTI_NODE_TYPE getType() const override { return RTTI_USER0; }
    void userEvent(UserEvent*) override {}

    /// Borrows the texture, which is loaded by the first draw.
    void addTexture(Texture* texture) override { tex = texture; }

    /// Null, also after addTexture.
    Texture* getTexture() override { return nullptr; }
    void computeBBox() override {}
    BBox* getBBox() override { return nullptr; }
    void addGeometry(Geometry*) override {}
    Geometry* getGeometry() override { return nullptr; }
    void print() override {}
    void cleanup() override {}
};
