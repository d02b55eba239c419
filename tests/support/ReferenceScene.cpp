#include "ReferenceScene.h"

#include "ReferencePlanes.h"

#include <GL/glew.h>

namespace reference {
namespace {

/// Multiplies a transform into GL's modelview matrix for as long as it lives.
class Pushed {
public:
    explicit Pushed(const Mat& transform)
    {
        float elements[16];
        for (std::size_t i = 0; i < 16; ++i) {
            elements[i] = transform[i].value;
        }
        glPushMatrix();
        glMultMatrixf(elements);
    }
    Pushed(const Pushed&) = delete;
    Pushed& operator=(const Pushed&) = delete;
    ~Pushed() { glPopMatrix(); }
};

Mat read(GLenum what)
{
    float elements[16];
    glGetFloatv(what, elements);
    Mat m;
    for (std::size_t i = 0; i < 16; ++i) {
        m[i] = elements[i];
    }
    return m;
}

/// The planes of the view in the frame of the current modelview matrix.
Planes currentPlanes()
{
    return planesOf(read(GL_PROJECTION_MATRIX), read(GL_MODELVIEW_MATRIX));
}

} // namespace

Scene::Scene(unsigned seed, const Recording& recorded) : World(seed, recorded)
{
    for (int id = 0; id < 100; ++id) {
        addFish(id);
    }
    for (int id = 0; id < 3; ++id) {
        add(std::make_unique<Sensor>(id, random));
    }
}

void Scene::addFish(int id)
{
    auto fish = std::make_unique<Boid>(random);
    const auto coordinate = [this] {
        const Single hundredths(random.next() % 90 / 100.0);
        return Single(hundredths.wide() + 0.1);
    };
    const Single y = coordinate();
    const Single x = coordinate();
    fish->translate({x, y, 0.0f});
    fish->scale(0.001f);
    fish->id = id;
    add(std::move(fish));
}

void Scene::emitBubble(Single x)
{
    auto bubble = std::make_unique<Boid>(random);
    bubble->translate({x, 0.01f, 0.0f});
    bubble->scale(0.001f);
    bubble->id = 10;
    bubble->bubble = true;
    add(std::move(bubble));
    ++emittedBubbles;
}

void Scene::draw()
{
    glMatrixMode(GL_MODELVIEW);
    visibleNodes = 2; // root and pivot are never culled
    culledBoids = 0;
    reapedBoids = 0;
    emittedBubbles = 0;
    const Pushed inRoot(root);
    const Pushed inPivot(pivot);
    const Pushed inWorld(world);
    if (boxIsInView(currentPlanes(), {0.0f, 0.0f, 0.0f}, {1.0f, 1.0f, 0.0f})) {
        drawWorld();
    }
}

void Scene::drawWorld()
{
    ++visibleNodes;
    if (sinceEmission > 14) {
        emitBubble(0.5f);
        emitBubble(0.8f);
        emitBubble(0.2f);
        sinceEmission = 0;
    }
    ++sinceEmission;

    for (auto child = children.begin(); child != children.end();) {
        if (auto* boid = std::get_if<std::unique_ptr<Boid>>(&*child)) {
            if (!(*boid)->alive) {
                child = children.erase(child);
                ++reapedBoids;
                continue;
            }
            if (draw(**boid)) {
                visibleNodes += 2; // the boid and its sprite
            } else {
                ++culledBoids;
            }
        } else {
            std::get<std::unique_ptr<Sensor>>(*child)->rep.draw(random);
            visibleNodes += 2; // the sensor and its body
        }
        ++child;
    }
}

bool Scene::draw(Boid& boid)
{
    const Pushed inBoid(boid.transform);
    if (!pointIsInside(currentPlanes(), {0.0f, 0.0f, 0.0f})) {
        return false;
    }
    if (boid.bubble) {
        boid.advanceOutline();
    }
    return true;
}

} // namespace reference
