#pragma once

#include "Node.h"
#include "Vector.h"

#include <list>

/// One point of a tentacle: a scaled velocity of its sensor, in the representation's frame.
struct Vertex {
    float x, y;
};

/// What a Sensor looks like: a translucent, pulsating body of 240 frames, each a display list, and
/// three tentacles, line strips of the sensor's last 24 velocities. Lengths are world units.
class SensorRep final : public Node {
public:
    Vec3* pos = nullptr;     ///< borrows; the sensor's position, set by the sensor
    Vec3* vel = nullptr;     ///< borrows; the sensor's velocity, set by the sensor
    unsigned sensorGeom = 0; ///< display list of a small square, made but not drawn
    bool initialized = false;
    float degree = 0;             ///< phase of the tentacles' wave, degrees, at least 0, below 360
    std::list<Vertex*> tentacle;  ///< owns; newest first, at most 24
    std::list<float> cos_curve;   ///< for each point the wave's cosine when it was added
    std::list<float> sin_curve;   ///< for each point the wave's sine when it was added
    int baseAnimFrames = 0;       ///< frames of the body: 240
    int counter = 0;              ///< the next frame to draw, 0..239
    unsigned* baseAnim = nullptr; ///< owns; the display list of each frame
    float pre_angle = 0;          ///< not used

    SensorRep() = default;

    /// Frees the points. The display lists live as long as the GL context.
    ~SensorRep();

    /// Makes all display lists. Draws 242 numbers of rand(). Needs: current GL context.
    void initialize();

    /// As initialize, with display lists that were made for another body in this GL context: all
    /// bodies have the same. Draws the same numbers of rand(). Makes no GL call, prints nothing.
    /// \param square,frames  sensorGeom and baseAnim of that body; unsigned[240]
    void initializeWith(unsigned square, const unsigned* frames);

    /// Draws and returns 1. Needs: current GL context.
    int cull() override;

    /// Draws body and tentacles. Needs: current GL context, initialize, pos and vel.
    /// Changes: color, blend function, line width (to 1); disables blending and the client's
    /// vertex array. The body has texture coordinates, and no texture is bound for it: it is drawn
    /// with the texture state that it finds.
    void draw() override;

    /// Adds the current velocity to the tentacles and advances their wave. Needs: vel.
    void doupdate() override;

    void drawBBox() override {}

    /// The value is shared with Sensor.
    RTTI_NODE_TYPE getType() const override { return RTTI_USER1; }
    void userEvent(UserEvent*) override {}
    void addTexture(Texture*) override {}
    Texture* getTexture() override { return nullptr; }
    void computeBBox() override {}
    BBox* getBBox() override { return nullptr; }
    void addGeometry(Geometry*) override {}
    Geometry* getGeometry() override { return nullptr; }
    void print() override {}
    void cleanup() override {}

    /// Compiles the 240 frames of the body and picks the frame to start with.
    /// Prints "-- Generate %d frames of base animation.\n". Needs: current GL context.
    void genBaseAnim();

    /// A point of the unit sphere on a grid of 16 by 16.
    /// \param i  0..16, from the top (0, 1, 0) to the bottom
    /// \param j  0..16, once around the y axis
    Vec3 get_p(int i, int j);

    /// Deforms a point of the unit sphere for one frame of the body. For frame 0, which is never
    /// shown, x and z are not finite.
    /// \param frame  0..239
    Vec3 get_mod_p(float x, float y, float z, int frame);

private:
    void endInitialization();
};
