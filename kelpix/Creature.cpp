#include "Creature.h"

#include "ObjAPI.h"
#include "Sensor.h"
#include "Texture.h"

#include <GL/glew.h>

namespace {

const Vec3& positionOf(Node* sensor)
{
    return static_cast<Sensor*>(sensor)->pos;
}

/// The mean of the sensors' positions; NaN for none.
Vec3 centerOf(const std::vector<Node*>* sensors)
{
    Vec3 sum;
    std::size_t count = 0;
    if (sensors != nullptr) {
        for (Node* sensor : *sensors) {
            sum = sum + positionOf(sensor);
        }
        count = sensors->size();
    }
    return sum / static_cast<float>(count);
}

} // namespace

Creature::Creature() : tex(new Texture("data/squid.png", IMAGE_PNG))
{
}

void Creature::initialize()
{
    cGeometry = glGenLists(1);
    glNewList(cGeometry, GL_COMPILE);
    glBegin(GL_POLYGON);
    glTexCoord2f(0, 0);
    glVertex2f(-0.2f, -0.2f);
    glTexCoord2f(1, 0);
    glVertex2f(0.2f, -0.2f);
    glTexCoord2f(1, 1);
    glVertex2f(0.2f, 0.2f);
    glTexCoord2f(0, 1);
    glVertex2f(-0.2f, 0.2f);
    glEnd();
    glEndList();

    model = obj_add_file("data/cube.obj");
    initialized = true;
}

int Creature::cull()
{
    if (!initialized) {
        initialize();
    }
    draw();
    return 1;
}

void Creature::doupdate()
{
    pos.set(transformmat[12], transformmat[13], transformmat[14]);
    vel = (centerOf(sensorList) - Vec3(pos.x, pos.y, 0)) * 0.1f;
    translate(vel.x, vel.y, 0);
}

void Creature::draw()
{
    if (tex != nullptr && !tex->isLoaded()) {
        tex->load();
    }
    glColor4f(1, 1, 1, 0.5f);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    drawSquare();
    drawLines();
    glDisable(GL_BLEND);
}

void Creature::drawSquare()
{
    if (tex != nullptr) {
        glEnable(GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, *tex->getId());
    }
    glCallList(cGeometry);
    if (tex != nullptr) {
        glBindTexture(GL_TEXTURE_2D, 0);
        glDisable(GL_TEXTURE_2D);
    }
}

void Creature::drawLines()
{
    glLineWidth(4);
    glBegin(GL_LINES);
    if (sensorList != nullptr) {
        for (Node* sensor : *sensorList) {
            const Vec3& end = positionOf(sensor);
            glVertex2f(0, 0);
            glVertex2f(end.x - pos.x, end.y - pos.y);
        }
    }
    glEnd();
    glLineWidth(1);
}
