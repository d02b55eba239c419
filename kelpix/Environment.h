#pragma once

#include "BBox.h"
#include "BucketIndex.h"
#include "Node.h"

#include <vector>

class OggSound;

/// Draw calls since bubbles were last emitted; one count for the whole process.
extern int emitt;

/// The underwater world: a textured plane that fills the unit square (0..1 in x and y at z = 0), a
/// hundred fish, bubbles, three motion-captured sensors, and the grid of 10 by 10 cells through
/// which the boids find each other. Lives until the process ends.
///
/// Fixed behavior: drawing emits the bubbles, so a world that is out of view emits none. Pinned by
/// EnvironmentTest.AnEnvironmentOutOfViewIsInitializedButNotDrawn; do not correct.
class Environment : public Node {
public:
    bool initialized = false;
    Geometry* geom = nullptr;     ///< owns; the plane
    Texture* tex = nullptr;       ///< owns; "data/underwater.jpg"
    BBox bbox;                    ///< the plane's box, own frame
    Texture* fishTex = nullptr;   ///< owns; "data/fish0.png"
    Texture* bubbleTex = nullptr; ///< owns; "data/bubble.png"
    unsigned bucketList = 0;      ///< display list of grid lines, made but not drawn
    BucketIndex bucketIndex;
    std::vector<Node*> obstacleList; ///< kept empty
    std::vector<Node*> sensorList;   ///< borrows; the three Sensors, which the boids follow

    /// Builds the world from "data/mocap.txt" (see MoCap::read, which can end the process) and
    /// starts the motion-capture clock. Makes no GL call. Draws 406 numbers of rand(): four for
    /// each fish, then two for each sensor.
    /// \param snd  borrows; the voice, whose position is that clock
    explicit Environment(OggSound* snd);

    /// Makes the plane and the grid lines. Needs: current GL context.
    void initialize();

    /// Draws and returns 1 when the plane is at least partly in view, else -1.
    /// Needs: current GL context.
    int cull() override;

    /// Draws the plane. The 16th call and every 15th call after it add three bubbles.
    /// Needs: current GL context, initialize.
    /// Changes: color, 2-D texture binding (to 0); disables texturing.
    void draw() override;

    void doupdate() override {}
    void drawBBox() override {}

    /// The value is shared with Boider.
    RTTI_NODE_TYPE getType() const override { return RTTI_USER0; }
    void userEvent(UserEvent*) override {}
    void addTexture(Texture*) override {}
    Texture* getTexture() override { return nullptr; }

    /// Sets the box to (0, 0, 0)-(1, 1, 0).
    void computeBBox() override;
    BBox* getBBox() override { return nullptr; }
    void addGeometry(Geometry*) override {}
    Geometry* getGeometry() override { return nullptr; }
    void print() override {}
    void cleanup() override {}

    /// \return a pointer into this object
    BucketIndex* getBucketIndex() { return &bucketIndex; }

    /// Makes bucketList: lines a hundredth apart in both directions. Needs: current GL context.
    void createBucketLines();

private:
    void addFish(int id);
    void addBubble(float x);
};
