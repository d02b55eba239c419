#include <GL/glew.h>

#include "FrozenScene.h"

#include "Boid.h"
#include "Boider.h"
#include "Environment.h"
#include "Frustum.h"
#include "Sensor.h"
#include "SensorRep.h"

#include <cmath>

namespace {

constexpr int SECONDS = 10;
constexpr Stage::Voice VOICE = {120 * 44100, 44100};
constexpr unsigned SEED = 1;
constexpr float RADIANS = 0.017453277f; // in a degree

/// A bubble's outline: a circle, each point scaled by the cosine of its angle to the velocity.
std::vector<float> outlineOf(const Boid& boid)
{
    const float speed = boid.vel.length();
    const float phase = RADIANS * static_cast<float>(boid.counter) * speed / 10.0f;
    const float radius = static_cast<float>(20.0 * std::cos(static_cast<double>(phase)));
    std::vector<float> points;
    for (int degree = 0; degree < 360; ++degree) {
        const double angle = static_cast<double>(RADIANS * static_cast<float>(degree));
        const Vec3 point(static_cast<float>(static_cast<double>(radius) * std::cos(angle)),
                         static_cast<float>(static_cast<double>(radius) * std::sin(angle)), 0);
        const float scale = Vec3::DotProduct(boid.vel, point) / (speed * point.length());
        points.push_back(scale * point.x);
        points.push_back(scale * point.y);
    }
    return points;
}

std::vector<float> tentacleOf(const SensorRep& rep, const std::list<float>& wave, float side)
{
    const float dy = 0.005f + rep.vel->y * 0.05f;
    float drop = 0;
    float grow = 1;
    float amp = 0;
    auto swing = wave.begin();
    std::vector<float> points;
    for (const Vertex* v : rep.tentacle) {
        points.push_back(v->x * grow + (*swing++ * amp + side));
        points.push_back(v->y * grow - drop);
        drop += dy;
        grow = 1.025f * grow;
        amp += 0.05f;
    }
    return points;
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
    figures.push_back({rep.glWorldMatrix(),
                       frame,
                       rep.baseAnim[frame],
                       {tentacleOf(rep, rep.cos_curve, 0), tentacleOf(rep, rep.sin_curve, 0.025f),
                        tentacleOf(rep, rep.sin_curve, -0.025f)}});
}

void FrozenScene::restore()
{
    emitt = 0;
    for (const Counter& counter : counters) {
        *counter.place = counter.value;
    }
}
