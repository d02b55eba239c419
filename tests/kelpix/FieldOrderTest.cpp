#include "AppManager.h"
#include "Boid.h"
#include "Boider.h"
#include "BucketIndex.h"
#include "Creature.h"
#include "Environment.h"
#include "FreeType.h"
#include "MoCap.h"
#include "OggSound.h"
#include "PivotNode.h"
#include "SceneGraph.h"
#include "Sensor.h"
#include "SensorRep.h"
#include "Shapes.h"
#include "Texture.h"
#include "UserEvent.h"
#include "Window.h"

#include "ImageJPEG.h"
#include "ImagePNG.h"

#include <functional>
#include <gtest/gtest.h>

// The fields of a data model stand in a given order, which readers and debuggers of memory rely
// on. A field is told by its address.

namespace {

template<typename... Fields>
void expectInOrder(const Fields&... fields)
{
    const void* const addresses[] = {static_cast<const void*>(&fields)...};
    for (std::size_t i = 1; i < sizeof...(fields); ++i) {
        EXPECT_TRUE(std::less<>()(addresses[i - 1], addresses[i])) << "field " << i;
    }
}

TEST(FieldOrderTest, Vectors)
{
    const Vec3 v;
    expectInOrder(v.x, v.y, v.z);
}

TEST(FieldOrderTest, Images)
{
    const ImageJPEG jpeg;
    expectInOrder(jpeg.sourceFile, jpeg.buffer, jpeg.w, jpeg.h, jpeg.c);
    const ImagePNG png;
    expectInOrder(png.sourceFile, png.buffer, png.w, png.h, png.c);
}

TEST(FieldOrderTest, TexturesAndShapes)
{
    const Texture t("", IMAGE_PNG);
    expectInOrder(t.imageFileName, t.data, t.loaded, t.texId, t.imageFormat, t.imageInfo);
    const Geometry g{};
    expectInOrder(g.list, g.name);
    const freetype::font_data f;
    expectInOrder(f.h, f.textures, f.list_base);
}

TEST(FieldOrderTest, Nodes)
{
    const PivotNode n;
    expectInOrder(n.alive, n.nullchildren, n.children, n.parent, n.viewpoint, n.transformmat,
                  n.worldmat, n.name, n.updateptr, n.pscale);
}

TEST(FieldOrderTest, SceneAndCamera)
{
    const SceneGraph s;
    expectInOrder(s.pivotNode, s.rootNode, s.envNode, s.listOfLights, s.node_count);
    const Render r;
    expectInOrder(r.sg, r.camera);
    const Camera c;
    expectInOrder(c.viewportList, c.projType, c.view, c.eye, c.center, c.up);
    const Viewport v{};
    expectInOrder(v.x, v.y, v.w, v.h, v.offset);
    const Point2 p{};
    expectInOrder(p.x, p.y);
    const UserEvent e{};
    expectInOrder(e.eventType, e.eventData);
}

TEST(FieldOrderTest, Windows)
{
    const Window w(2, 0, 0, 10, 10);
    expectInOrder(w.frames, w.fps, w.offset, w.pscale, w.our_font, w.MOUSE, w.render, w.windowId,
                  w.height, w.width, w.origin, w.drawcallback);
}

TEST(FieldOrderTest, Sounds)
{
    const OggSound s;
    expectInOrder(s.state, s.bufferID, s.sourceID, s.format, s.freq, s.bufferData, s.numSamples,
                  s.sampleOffset);
}

TEST(FieldOrderTest, Grid)
{
    const Bucket b;
    expectInOrder(b.index, b.boidList, b.nullboids);
    const BucketIndex i;
    expectInOrder(i.extents, i.index);
}

TEST(FieldOrderTest, Boids)
{
    Boid b;
    expectInOrder(b.pscale, b.pos, b.vel, b.orientation, b.flockCenter, b.obstacleList,
                  b.sensorList, b.type, b.bbox, b.initialized, b.searchRadius, b.boidId, b.myBucket,
                  b.boider, b.mode, b.outOfBound, b.bubbleTex, b.counter);
}

TEST(FieldOrderTest, MotionCapture)
{
    const SensorData d;
    expectInOrder(d.pos, d.ori, d.timestep);
    const MoCap m;
    expectInOrder(m.sensorDataList, m.sound, m.step, m.numSteps);
}

TEST(FieldOrderTest, Sensors)
{
    static const Sensor s; // its body lives as long
    expectInOrder(s.pscale, s.pos, s.pos_old, s.vel, s.orientation, s.mocap, s.sensorId, s.tilt,
                  s.current_tilt, s.initialized, s.rep);
    const SensorRep r;
    expectInOrder(r.pscale, r.pos, r.vel, r.sensorGeom, r.initialized, r.degree, r.tentacle,
                  r.cos_curve, r.sin_curve, r.baseAnimFrames, r.counter, r.baseAnim, r.pre_angle);
    const Vertex v{};
    expectInOrder(v.x, v.y);
}

// An Environment and a Boider need a recording and a GL context when they are made and destroyed:
// their members' offsets are compared instead of an object's.
template<typename Class, typename... Members>
void expectOffsetsInOrder(Members Class::*... members)
{
    alignas(Class) static unsigned char storage[sizeof(Class)];
    const auto* object = reinterpret_cast<const Class*>(storage);
    expectInOrder(object->*members...);
}

TEST(FieldOrderTest, WorldSpriteAndCreature)
{
    expectOffsetsInOrder(&Environment::initialized, &Environment::geom, &Environment::tex,
                         &Environment::bbox, &Environment::fishTex, &Environment::bubbleTex,
                         &Environment::bucketList, &Environment::bucketIndex,
                         &Environment::obstacleList, &Environment::sensorList);
    expectOffsetsInOrder(&Boider::initialized, &Boider::boidGeometry, &Boider::tex);
    expectOffsetsInOrder(&Creature::pos, &Creature::vel, &Creature::sensorList, &Creature::model,
                         &Creature::initialized, &Creature::cGeometry, &Creature::tex);
}

} // namespace
