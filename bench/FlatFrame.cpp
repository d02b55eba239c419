#include <GL/glew.h>

#include "FlatFrame.h"

#include "Environment.h"
#include "FrozenScene.h"
#include "Shapes.h"
#include "Texture.h"

namespace {

void drawPoints(GLenum mode, const std::vector<float>& points)
{
    glVertexPointer(2, GL_FLOAT, 0, points.data());
    glDrawArrays(mode, 0, static_cast<GLsizei>(points.size() / 2));
}

void drawSprite(const FrozenScene::Sprite& sprite)
{
    glLoadMatrixf(sprite.matrix);
    glCallList(sprite.list);
}

} // namespace

void drawFlat(const FrozenScene& scene)
{
    Environment& water = scene.environment();
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glPushMatrix();
    glEnable(GL_TEXTURE_2D);
    glEnableClientState(GL_VERTEX_ARRAY);

    glBindTexture(GL_TEXTURE_2D, *water.tex->getId());
    glColor3f(0.5f, 0.5f, 0.5f);
    glLoadMatrixf(water.glWorldMatrix());
    glCallList(water.geom->list);

    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glBindTexture(GL_TEXTURE_2D, *water.fishTex->getId());
    glColor4f(1.0f, 1.0f, 1.0f, 0.5f);
    for (const auto& fish : scene.fish) {
        drawSprite(fish);
    }

    glDisable(GL_TEXTURE_2D);
    glColor4f(0.5f, 0.5f, 1.0f, 0.5f);
    glLineWidth(3.0f);
    for (const auto& figure : scene.figures) {
        glLoadMatrixf(figure.matrix);
        glPushMatrix();
        glScalef(0.3f, 0.3f, 0.3f);
        glCallList(figure.body);
        glPopMatrix();
        for (const auto& tentacle : figure.tentacles) {
            drawPoints(GL_LINE_STRIP, tentacle);
        }
    }
    glLineWidth(1.0f);

    glBindTexture(GL_TEXTURE_2D, *water.bubbleTex->getId());
    for (const auto& bubble : scene.bubbles) {
        glColor4f(0.8f, 0.8f, 1.0f, 0.5f);
        glLoadMatrixf(bubble.matrix);
        drawPoints(GL_LINE_LOOP, bubble.outline);
        glEnable(GL_TEXTURE_2D);
        glColor4f(1.0f, 1.0f, 1.0f, 0.5f);
        drawSprite(bubble.sprite);
        glDisable(GL_TEXTURE_2D);
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisable(GL_BLEND);
    glPopMatrix();
}
