#include <GL/glew.h>

#include "FrozenScene.h"

#include "Boid.h"
#include "Boider.h"
#include "Environment.h"
#include "Frustum.h"
#include "LiteralBoid.h"
#include "LiteralSensor.h"
#include "Sensor.h"
#include "SensorRep.h"

namespace {

constexpr int SECONDS = 10;
constexpr Stage::Voice VOICE = {120 * 44100, 44100};
constexpr unsigned SEED = 1;

std::vector<float> outlineOf(const Boid& boid)
{
    literal::Boid<float> twin;
    twin.vel = {boid.vel.x, boid.vel.y, boid.vel.z};
    twin.counter = boid.counter;
    std::vector<float> points;
    twin.outline([&points](float x, float y) {
        points.push_back(x);
        points.push_back(y);
    });
    return points;
}

std::array<std::vector<float>, 3> tentaclesOf(const SensorRep& rep)
{
    literal::Tentacles<float> twin;
    for (const Vertex* point : rep.tentacle) {
        twin.points.push_back(std::make_unique<literal::Triple<float>>(
            literal::Triple<float>{point->x, point->y, 0}));
    }
    twin.cosines = rep.cos_curve;
    twin.sines = rep.sin_curve;
    std::array<std::vector<float>, 3> strips;
    auto strip = strips.begin();
    for (const auto& points : twin.strips({rep.vel->x, rep.vel->y, rep.vel->z})) {
        for (const auto& [x, y] : points) {
            strip->push_back(x);
            strip->push_back(y);
        }
        ++strip;
    }
    return strips;
}

} // namespace

FrozenScene::FrozenScene() : stage(740, 740, SEED, VOICE)
{
    for (int i = 0; i < SECONDS * Stage::STEPS_PER_SECOND; ++i) {
        stage.update();
        stage.draw();
    }
    emitt = 0; // no bubbles while it is frozen
    for (Node* child : *stage.water->getChildList()) {
        if (child->getType() == RTTI_USER1) {
            addFigure(*static_cast<Sensor*>(child)->rep);
        }
    }
    // The last draw has noted the matrices of what was visible then.
    glGetFloatv(GL_PROJECTION_MATRIX, projection);
    stage.draw();
    for (Node* child : *stage.water->getChildList()) {
        if (child->getType() != RTTI_USER1) {
            addBoid(*static_cast<Boid*>(child));
        }
    }
    restore();
}

void FrozenScene::addBoid(Boid& boid)
{
    float planes[6][4];
    const float origin[3] = {0, 0, 0};
    Frustum::extract_planes(planes, projection, boid.glWorldMatrix());
    if (Frustum::test_point(planes, origin) == -1) {
        return;
    }
    const Sprite sprite = {boid.boider->glWorldMatrix(), boid.boider->boidGeometry};
    if (boid.type == BOID_BUBBLE) {
        counters.push_back({&boid.counter, boid.counter});
        bubbles.push_back({boid.glWorldMatrix(), outlineOf(boid), sprite});
    } else {
        fish.push_back(sprite);
    }
}

void FrozenScene::addFigure(SensorRep& rep)
{
    counters.push_back({&rep.counter, rep.counter});
    const int frame = rep.counter == 0 ? 1 : rep.counter;
    figures.push_back({rep.glWorldMatrix(), frame, rep.baseAnim[frame], tentaclesOf(rep)});
}

void FrozenScene::restore()
{
    emitt = 0;
    for (const Counter& counter : counters) {
        *counter.place = counter.value;
    }
}
