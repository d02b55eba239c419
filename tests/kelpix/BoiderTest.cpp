#include "Boider.h"

#include "Boid.h"
#include "ExactFeedback.h"
#include "Texture.h"

#include <gmock/gmock.h>
#include <memory>

using testing::Each;
using testing::ElementsAre;

namespace {

/// A texture that counts as loaded: four texels with the corner colors red, green, blue, white
/// (texture coordinates (0, 0), (1, 0), (0, 1), (1, 1)), all with the same alpha.
std::unique_ptr<Texture> fourCorners(unsigned char alpha)
{
    auto texture = std::make_unique<Texture>("none", IMAGE_PNG);
    const unsigned char texels[] = {255, 0, 0,   alpha, 0,   255, 0,   alpha,
                                    0,   0, 255, alpha, 255, 255, 255, alpha};
    glGenTextures(1, &texture->texId);
    glBindTexture(GL_TEXTURE_2D, texture->texId);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexImage2D(GL_TEXTURE_2D, 0, 4, 2, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels);
    glBindTexture(GL_TEXTURE_2D, 0);
    texture->loaded = true;
    return texture;
}

class BoiderTest : public GLTest {
protected:
    /// Looks so that the square of 40 units takes half the window's width and height.
    void SetUp() override
    {
        GLTest::SetUp();
        glMatrixMode(GL_PROJECTION);
        glScalef(1 / 40.0f, 1 / 40.0f, 1);
        glMatrixMode(GL_MODELVIEW);
    }

    static void fill(float red, float green, float blue)
    {
        glClearColor(red, green, blue, 1);
        glClear(GL_COLOR_BUFFER_BIT);
    }

    /// The middle of one quarter of the sprite.
    static std::vector<unsigned char> quarter(int right, int up)
    {
        return pixel(WIDTH / 2 + (2 * right - 1) * 90, HEIGHT / 2 + (2 * up - 1) * 90);
    }
};

/// A channel within one step of \p expected: GL may round either way.
auto Near(int expected)
{
    return testing::AllOf(testing::Ge(expected - 1), testing::Le(expected + 1));
}

TEST_F(BoiderTest, AFreshBoiderHasNeitherListNorTexture)
{
    Boider boider;
    EXPECT_FALSE(boider.initialized);
    EXPECT_EQ(boider.boidGeometry, 0u);
    EXPECT_EQ(boider.tex, nullptr);
}

TEST_F(BoiderTest, DestroyingABoiderThatWasNeverDrawnIsHarmless)
{
    const GLuint list = glGenLists(1);
    glNewList(list, GL_COMPILE);
    glEndList();
    delete new Boider;
    EXPECT_TRUE(glIsList(list));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    glDeleteLists(list, 1);
}

TEST_F(BoiderTest, TheListIsMadeOnceAndDeletedWithTheBoider)
{
    auto* const boider = new Boider;
    EXPECT_EQ(boider->cull(), 1);
    EXPECT_TRUE(boider->initialized);
    const GLuint list = boider->boidGeometry;
    ASSERT_TRUE(glIsList(list));
    EXPECT_EQ(boider->cull(), 1);
    EXPECT_EQ(boider->boidGeometry, list);
    delete boider;
    EXPECT_FALSE(glIsList(list));
}

TEST_F(BoiderTest, EveryBoiderHasAListOfItsOwn)
{
    Boider one;
    Boider other;
    one.cull();
    other.cull();
    EXPECT_NE(one.boidGeometry, other.boidGeometry);
}

TEST_F(BoiderTest, TheSpriteIsASquareOfFortyUnits)
{
    Boider boider;
    boider.initialize();
    const ExactFeedback feedback(32);
    const auto sprite = feedback.of([&boider] { boider.draw(); });
    const auto expected = feedback.of([] {
        const float corners[4][3] = {{-20, -20, 0}, {20, -20, 0}, {20, 20, 0}, {-20, 20, 0}};
        glColor4f(1, 1, 1, 0.5f);
        drawTexturedQuad(corners);
    });
    EXPECT_EQ(difference(sprite, expected), "");
}

TEST_F(BoiderTest, WithoutATextureTheSpriteIsAWhiteHalfTransparentSquare)
{
    Boider boider;
    fill(1, 0, 0);
    boider.cull();
    for (const int right : {0, 1}) {
        for (const int up : {0, 1}) {
            EXPECT_THAT(quarter(right, up), ElementsAre(255, Near(128), Near(128), testing::_));
        }
    }
    EXPECT_THAT(pixel(20, 20), ElementsAre(255, 0, 0, 255)) << "beside it";
}

TEST_F(BoiderTest, TheTextureIsDrawnAtHalfOpacity)
{
    const auto texture = fourCorners(255);
    Boider boider;
    boider.addTexture(texture.get());
    EXPECT_EQ(boider.tex, texture.get());
    fill(0, 0, 0);
    boider.cull();
    EXPECT_THAT(quarter(0, 0), ElementsAre(Near(128), 0, 0, testing::_));
    EXPECT_THAT(quarter(1, 0), ElementsAre(0, Near(128), 0, testing::_));
    EXPECT_THAT(quarter(0, 1), ElementsAre(0, 0, Near(128), testing::_));
    EXPECT_THAT(quarter(1, 1), ElementsAre(Near(128), Near(128), Near(128), testing::_));
    glDeleteTextures(1, texture->getId());
}

TEST_F(BoiderTest, TheTexturesOwnAlphaCountsOnTop)
{
    const auto texture = fourCorners(128);
    Boider boider;
    boider.addTexture(texture.get());
    fill(0, 0, 0);
    boider.cull();
    EXPECT_THAT(quarter(0, 0), ElementsAre(Near(64), 0, 0, testing::_));
    glDeleteTextures(1, texture->getId());
}

TEST_F(BoiderTest, DrawingLeavesTexturingAndBlendingOff)
{
    const auto texture = fourCorners(255);
    Boider boider;
    boider.addTexture(texture.get());
    glEnable(GL_BLEND);
    boider.cull();
    EXPECT_FALSE(isEnabled(GL_BLEND));
    EXPECT_FALSE(isEnabled(GL_TEXTURE_2D));
    EXPECT_EQ(getInteger(GL_TEXTURE_BINDING_2D), 0);
    EXPECT_EQ(getInteger(GL_BLEND_SRC), GL_SRC_ALPHA);
    EXPECT_EQ(getInteger(GL_BLEND_DST), GL_ONE_MINUS_SRC_ALPHA);
    float color[4];
    glGetFloatv(GL_CURRENT_COLOR, color);
    EXPECT_THAT(color, ElementsAre(1, 1, 1, 0.5f));
    glDeleteTextures(1, texture->getId());
}

TEST_F(BoiderTest, WithoutATextureTheTextureStateIsNotTouched)
{
    const auto texture = fourCorners(255);
    glBindTexture(GL_TEXTURE_2D, *texture->getId());
    glEnable(GL_TEXTURE_2D);
    Boider boider;
    boider.cull();
    EXPECT_TRUE(isEnabled(GL_TEXTURE_2D));
    EXPECT_EQ(getInteger(GL_TEXTURE_BINDING_2D), static_cast<GLint>(*texture->getId()));
    glBindTexture(GL_TEXTURE_2D, 0);
    glDeleteTextures(1, texture->getId());
}

TEST_F(BoiderTest, DepthTestAndDepthMaskStayAsTheyAre)
{
    Boider boider;
    glEnable(GL_DEPTH_TEST);
    glDepthMask(GL_FALSE);
    boider.cull();
    EXPECT_TRUE(isEnabled(GL_DEPTH_TEST));
    EXPECT_EQ(getInteger(GL_DEPTH_WRITEMASK), GL_FALSE);
    glDepthMask(GL_TRUE);
}

TEST_F(BoiderTest, TheFirstDrawLoadsTheTexture)
{
    Texture texture("none", static_cast<IMAGE_TYPE>(99)); // no file is read for an unknown kind
    Boider boider;
    boider.addTexture(&texture);
    EXPECT_FALSE(texture.isLoaded());
    boider.cull();
    EXPECT_TRUE(texture.isLoaded());
    boider.cull();
}

TEST_F(BoiderTest, ItIsDrawnOutOfViewToo)
{
    Boider boider;
    glTranslatef(1000, 0, 0);
    EXPECT_EQ(boider.cull(), 1);
    EXPECT_TRUE(boider.initialized);
}

TEST_F(BoiderTest, WhatABoiderHasNoUseForIsEmpty)
{
    Texture texture("none", IMAGE_PNG);
    Boider boider;
    Node* const node = &boider;
    EXPECT_EQ(node->getType(), RTTI_USER0);
    node->addTexture(&texture);
    EXPECT_EQ(node->getTexture(), nullptr) << "also after addTexture";
    node->doupdate();
    node->drawBBox();
    node->userEvent(nullptr);
    node->computeBBox();
    node->addGeometry(nullptr);
    node->print();
    node->cleanup();
    EXPECT_EQ(node->getBBox(), nullptr);
    EXPECT_EQ(node->getGeometry(), nullptr);
    EXPECT_FALSE(boider.initialized);
}

} // namespace
