#pragma once

#include "Node.h"
#include "Vector.h"

#include <vector>

/// A figure that eases towards the centre of a group of sensors: a textured, half-transparent
/// square with a thick line to each of them. Lengths are units of its parent's frame, which must be
/// that of the sensors, and its own transform only translates. Texture, display list and model live
/// until the process ends.
class Creature : public Node {
public:
    Vec3 pos; ///< the translation before the last update's move: where the lines start from
    Vec3 vel; ///< the last update's move; z, a tenth of the centre's z, is not applied
    std::vector<Node*>* sensorList = nullptr; ///< borrows; Sensors, set by the creator
    int model = 0;                            ///< the OBJ model's index; 0 until initialised,
                                              ///< -1 when memory ran out
    bool initialized = false;
    unsigned cGeometry = 0; ///< display list of the square; 0 until initialised
    Texture* tex;           ///< owns; "data/squid.png"; null draws an untextured square

    /// Makes the texture, unread. Needs no GL context.
    Creature();

    /// Makes the square's display list, and adds "data/cube.obj" to the model store, where it stays
    /// undrawn. Needs: current GL context. Changes: what obj_add_file does.
    void initialize();

    /// Draws and returns 1: it is never culled. Needs: current GL context.
    int cull() override;

    /// Draws the square over what is there, then a line to each sensor. Reads the texture's file on
    /// the first call. Needs: current GL context, initialize.
    /// Changes: colour, line width (to 1), blend function, 2-D texture binding (to 0); disables
    /// texturing, blending.
    void draw() override;

    /// Moves by a tenth of the way to the sensors' centre. No sensors, or no list, have no centre:
    /// the translation is NaN from then on.
    void doupdate() override;

    void drawBBox() override {}
    RTTI_NODE_TYPE getType() const override { return RTTI_USER2; }
    void userEvent(UserEvent*) override {}
    void addTexture(Texture*) override {}
    Texture* getTexture() override { return nullptr; }
    void computeBBox() override {}
    BBox* getBBox() override { return nullptr; }
    void addGeometry(Geometry*) override {}
    Geometry* getGeometry() override { return nullptr; }
    void print() override {}
    void cleanup() override {}

private:
    void drawSquare();
    void drawLines();
};
