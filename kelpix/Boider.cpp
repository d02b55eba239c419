#include "Boider.h"

#include "Texture.h"

#include <GL/glew.h>

Boider::~Boider()
{
    glDeleteLists(boidGeometry, 1);
}

void Boider::initialize()
{
    boidGeometry = glGenLists(1);
    glNewList(boidGeometry, GL_COMPILE);
    glBegin(GL_POLYGON);
    glTexCoord2f(0, 0);
    glVertex2f(-20, -20);
    glTexCoord2f(1, 0);
    glVertex2f(20, -20);
    glTexCoord2f(1, 1);
    glVertex2f(20, 20);
    glTexCoord2f(0, 1);
    glVertex2f(-20, 20);
    glEnd();
    glEndList();
    initialized = true;
}

int Boider::cull()
{
    if (!initialized) {
        initialize();
    }
    draw();
    return 1;
}

void Boider::draw()
{
    if (tex != nullptr && !tex->isLoaded()) {
        tex->load();
    }
    glColor4f(1.0f, 1.0f, 1.0f, 0.5f);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    if (tex != nullptr) {
        glEnable(GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, *tex->getId());
    }
    glCallList(boidGeometry);
    if (tex != nullptr) {
        glBindTexture(GL_TEXTURE_2D, 0);
        glDisable(GL_TEXTURE_2D);
    }
    glDisable(GL_BLEND);
}
