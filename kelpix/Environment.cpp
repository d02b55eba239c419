#include "Environment.h"

#include "Boid.h"
#include "Frustum.h"
#include "MoCap.h"
#include "Sensor.h"
#include "Shapes.h"
#include "Texture.h"

#include <FL/Fl.H>
#include <GL/glew.h>
#include <cstdlib>

int emitt = 0;

namespace {

constexpr int FISH = 100;
constexpr int SENSORS = 3;
constexpr int BUBBLE_ID = 10; // all bubbles share it, and do not flock with each other
constexpr float BOID_SCALE = 0.001f;

/// A start coordinate, 0.10 to 0.99 in steps of 0.01.
///
/// Fixed behavior: the quotient of a start coordinate is rounded to single precision before 0.1 is
/// added to it in double precision. Pinned by
/// FreshEnvironmentTest.TheNinetyStartCoordinatesAreExact; do not correct.
float randomCoordinate()
{
    const float step = static_cast<float>((std::rand() % 90) / 100.0);
    return static_cast<float>(0.1 + static_cast<double>(step));
}

/// The coordinate of the next grid line.
///
/// Fixed behavior: rounding at each step adds up, so that there are 101 grid lines in each
/// direction, the last one just below 1. Pinned by
/// EnvironmentTest.TheGridLinesAreAHundredAndOneInEachDirection; do not correct.
float nextLine(float at)
{
    return static_cast<float>(static_cast<double>(at) + 0.01);
}

} // namespace

Environment::Environment(OggSound* snd)
{
    tex = new Texture("data/underwater.jpg", IMAGE_JPEG);
    bubbleTex = new Texture("data/bubble.png", IMAGE_PNG);
    fishTex = new Texture("data/fish0.png", IMAGE_PNG);

    auto* mocap = new MoCap;
    mocap->sound = snd;
    mocap->read("data/mocap.txt");

    for (int i = 0; i < FISH; ++i) {
        addFish(i);
    }
    for (int k = 0; k < SENSORS; ++k) {
        auto* sensor = new Sensor;
        sensor->mocap = mocap;
        sensor->sensorId = k;
        attachChild(sensor);
        sensorList.push_back(sensor);
    }
    bucketIndex.initialize(10, 10, this);
    Fl::add_timeout(0.0, dataTimer, mocap);
}

void Environment::addFish(int id)
{
    auto* fish = new Boid(fishTex);
    const float y = randomCoordinate();
    const float x = randomCoordinate();
    fish->translate(x, y, 0);
    fish->scale(BOID_SCALE, BOID_SCALE, BOID_SCALE);
    fish->setId(id);
    attachChild(fish);
    fish->type = BOID_FISH;
    fish->sensorList = &sensorList;
}

void Environment::addBubble(float x)
{
    auto* bubble = new Boid(bubbleTex);
    bubble->translate(x, 0.01f, 0);
    bubble->scale(BOID_SCALE, BOID_SCALE, BOID_SCALE);
    bubble->setId(BUBBLE_ID);
    attachChild(bubble);
    bubble->type = BOID_BUBBLE;
    bubble->sensorList = &sensorList;
}

void Environment::initialize()
{
    geom = new Geometry{};
    Shapes::plane(geom, 1.0f);
    computeBBox();
    createBucketLines();
    initialized = true;
}

void Environment::computeBBox()
{
    bbox.set(0, 0, 0, 1, 1, 0);
}

void Environment::createBucketLines()
{
    bucketList = glGenLists(1);
    glNewList(bucketList, GL_COMPILE);
    glColor3f(0.5f, 0.5f, 0.5f);
    glBegin(GL_LINES);
    for (float j = 0; 1.0f > j; j = nextLine(j)) {
        glVertex3f(0, j, 0);
        glVertex3f(1, j, 0);
    }
    glEnd();
    glBegin(GL_LINES);
    for (float i = 0; 1.0f > i; i = nextLine(i)) {
        glVertex3f(i, 0, 0);
        glVertex3f(i, 1, 0);
    }
    glEnd();
    glEndList();
}

int Environment::cull()
{
    if (!initialized) {
        initialize();
    }
    float planes[6][4];
    Frustum::get_frustum(planes);
    if (Frustum::test_frustum(planes, bbox.getBounds()) == -1) {
        return -1;
    }
    draw();
    return 1;
}

void Environment::draw()
{
    if (tex != nullptr && !tex->isLoaded()) {
        tex->load();
    }
    if (geom != nullptr) {
        if (tex != nullptr) {
            glEnable(GL_TEXTURE_2D);
            glBindTexture(GL_TEXTURE_2D, *tex->getId());
        }
        glColor3f(0.5f, 0.5f, 0.5f);
        glCallList(geom->list);
        if (tex != nullptr) {
            glBindTexture(GL_TEXTURE_2D, 0);
            glDisable(GL_TEXTURE_2D);
        }
    }
    if (emitt > 14) {
        addBubble(0.5f);
        addBubble(0.8f);
        addBubble(0.2f);
        emitt = 0;
    }
    ++emitt;
}
