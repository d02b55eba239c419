#pragma once

#include "Node.h"
#include "Vector.h"

#include <vector>

/// A figure that eases towards the center of a group of sensors: a textured, half-transparent
/// square with a thick line to each sensor. Lengths are units of the parent's frame; the sensors
/// must have the same parent. Its own transform only translates. Texture, display list and model
/// live until the process ends.
///
/// \par Example
/// \snippet creature.cpp sensors
class Creature : public Node {
public:
    Vec3 pos; ///< translation before the move of the last update; the lines start there
    Vec3 vel; ///< move of the last update, a tenth of the way to the center; z is not applied
    std::vector<Node*>* sensorList = nullptr; ///< borrows; Sensors, set by the creator
    int model = 0;                            ///< the OBJ model's index; 0 until initialized,
                                              ///< -1 when memory ran out
    bool initialized = false;
    unsigned cGeometry = 0; ///< display list of the square; 0 until initialized
    Texture* tex;           ///< owns; "data/squid.png"; null draws an untextured square

    /// Makes the texture, whose file is not read yet. Needs no GL context.
    Creature();

    /// Makes the square's display list, and adds "data/cube.obj" to the model store. The model is
    /// not drawn. Needs: current GL context. Changes: what obj_add_file does.
    void initialize();

    /// Draws and returns 1: it is never culled. Needs: current GL context.
    int cull() override;

    /// Draws the square over what is there, then a line to each sensor. Reads the texture's file on
    /// the first call. Needs: current GL context, initialize.
    /// Changes: color, line width (to 1), blend function, 2-D texture binding (to 0); disables
    /// texturing, blending.
    void draw() override;

    /// Moves by a tenth of the way to the sensors' center.
    ///
    /// Fixed behavior: without sensors, or without a list, the center of a creature is NaN, and so
    /// is the creature's translation from then on. Pinned by
    /// CreatureUpdateTest.WithoutSensorsItsTranslationIsNotFinite,
    /// CreatureUpdateTest.AnUnsetListCountsAsAnEmptyOne; do not correct.
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
