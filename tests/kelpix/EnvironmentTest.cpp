#include "Environment.h"

#include "Boid.h"
#include "Boider.h"
#include "ExactFeedback.h"
#include "ReferenceMatchers.h"
#include "Sensor.h"
#include "SensorRep.h"
#include "Shapes.h"
#include "TestWorld.h"
#include "Texture.h"

#include <FL/Fl.H>
#include <cstdlib>
#include <set>
#include <utility>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StrEq;

namespace {

// All 90 start coordinates, (0.1 + float(n / 100.0)) with the sum in double precision, rounded to
// float: worked out with exact fractions, rounded at each of the four steps.
constexpr std::uint32_t START_COORDINATES[90] = {
    0x3DCCCCCD, 0x3DE147AE, 0x3DF5C28F, 0x3E051EB8, 0x3E0F5C29, 0x3E19999A, 0x3E23D70A, 0x3E2E147B,
    0x3E3851EB, 0x3E428F5C, 0x3E4CCCCD, 0x3E570A3D, 0x3E6147AE, 0x3E6B851E, 0x3E75C28F, 0x3E800000,
    0x3E851EB8, 0x3E8A3D71, 0x3E8F5C29, 0x3E947AE1, 0x3E99999A, 0x3E9EB852, 0x3EA3D70A, 0x3EA8F5C3,
    0x3EAE147B, 0x3EB33333, 0x3EB851EB, 0x3EBD70A4, 0x3EC28F5C, 0x3EC7AE14, 0x3ECCCCCD, 0x3ED1EB85,
    0x3ED70A3D, 0x3EDC28F6, 0x3EE147AE, 0x3EE66666, 0x3EEB851F, 0x3EF0A3D7, 0x3EF5C28F, 0x3EFAE147,
    0x3F000000, 0x3F028F5C, 0x3F051EB8, 0x3F07AE15, 0x3F0A3D71, 0x3F0CCCCD, 0x3F0F5C29, 0x3F11EB85,
    0x3F147AE1, 0x3F170A3E, 0x3F19999A, 0x3F1C28F6, 0x3F1EB852, 0x3F2147AE, 0x3F23D70B, 0x3F266667,
    0x3F28F5C3, 0x3F2B851F, 0x3F2E147B, 0x3F30A3D7, 0x3F333334, 0x3F35C290, 0x3F3851EC, 0x3F3AE148,
    0x3F3D70A4, 0x3F400000, 0x3F428F5D, 0x3F451EB9, 0x3F47AE15, 0x3F4A3D71, 0x3F4CCCCD, 0x3F4F5C29,
    0x3F51EB86, 0x3F547AE2, 0x3F570A3E, 0x3F59999A, 0x3F5C28F6, 0x3F5EB852, 0x3F6147AE, 0x3F63D70B,
    0x3F666667, 0x3F68F5C3, 0x3F6B851F, 0x3F6E147B, 0x3F70A3D7, 0x3F733334, 0x3F75C290, 0x3F7851EC,
    0x3F7AE148, 0x3F7D70A4,
};

TEST(FreshEnvironmentTest, HasAHundredFishAndThenThreeSensors)
{
    Environment* const world = newWorld(1);
    ASSERT_EQ(world->children.size(), 103u);
    int number = 0;
    for (Node* child : world->children) {
        EXPECT_EQ(child->getParent(), world);
        if (number < 100) {
            ASSERT_EQ(child->getType(), RTTI_PARTICLE);
            auto* const fish = static_cast<Boid*>(child);
            EXPECT_EQ(fish->getId(), number);
            EXPECT_EQ(fish->type, BOID_FISH);
            EXPECT_EQ(fish->sensorList, &world->sensorList);
            EXPECT_EQ(fish->bubbleTex, world->fishTex);
            EXPECT_THAT(fish->children, ElementsAre(fish->boider));
            EXPECT_EQ(fish->boider->tex, world->fishTex);
        } else {
            ASSERT_EQ(child->getType(), RTTI_USER1);
            auto* const sensor = static_cast<Sensor*>(child);
            EXPECT_EQ(sensor->sensorId, number - 100);
            EXPECT_EQ(sensor, world->sensorList[static_cast<std::size_t>(number - 100)]);
            EXPECT_EQ(sensor->mocap, recordingOf(world)) << "one recording for all";
        }
        ++number;
    }
    EXPECT_EQ(world->sensorList.size(), 3u);
    EXPECT_THAT(world->obstacleList, IsEmpty());
    EXPECT_FALSE(world->initialized);
    EXPECT_EQ(world->geom, nullptr);
    EXPECT_EQ(world->bucketList, 0u);
}

TEST(FreshEnvironmentTest, NamesItsPicturesAndReadsNone)
{
    Environment* const world = newWorld(1);
    EXPECT_THAT(world->tex->imageFileName, StrEq("data/underwater.jpg"));
    EXPECT_EQ(world->tex->imageFormat, IMAGE_JPEG);
    EXPECT_THAT(world->fishTex->imageFileName, StrEq("data/fish0.png"));
    EXPECT_EQ(world->fishTex->imageFormat, IMAGE_PNG);
    EXPECT_THAT(world->bubbleTex->imageFileName, StrEq("data/bubble.png"));
    EXPECT_EQ(world->bubbleTex->imageFormat, IMAGE_PNG);
    for (const Texture* texture : {world->tex, world->fishTex, world->bubbleTex}) {
        EXPECT_FALSE(texture->isLoaded());
    }
}

TEST(FreshEnvironmentTest, HasAnEmptyGridOfTenByTenCells)
{
    Environment* const world = newWorld(1);
    EXPECT_EQ(world->getBucketIndex(), &world->bucketIndex);
    EXPECT_THAT(world->bucketIndex.extents, ElementsAre(0, 0, 10, 10));
    for (int i = 0; i < 100; ++i) {
        EXPECT_THAT(world->bucketIndex.index[i]->boidList, IsEmpty());
    }
}

TEST(FreshEnvironmentTest, ReadsItsRecordingAndStartsTheClockOnIt)
{
    reference::Recording recording = farAwayRecording();
    recording[1][0] = {0.25f, -3.0f, 0.1f};
    const SceneFolder folder(recording);
    static OggSound voice;
    testing::internal::CaptureStdout();
    static auto* const world = new Environment(&voice);
    testing::internal::GetCapturedStdout();
    MoCap* const mocap = recordingOf(world);
    EXPECT_EQ(mocap->sound, &voice);
    EXPECT_EQ(mocap->numSteps, 1);
    EXPECT_THAT(*mocap->sensorDataList.at(1)->pos.at(0), IsVec3(0.25f, -3, 0.1f));
    EXPECT_TRUE(Fl::has_timeout(dataTimer, mocap));
}

TEST(FreshEnvironmentTest, TheNinetyStartCoordinatesAreExact)
{
    std::set<int> seen;
    for (unsigned seed = 1; seed <= 5; ++seed) {
        Environment* const world = newWorld(seed);
        ReferenceRandom random(seed);
        for (const Boid* fish : boidsOf(world)) {
            random.next(); // the velocity
            random.next();
            const int y = random.next() % 90;
            const int x = random.next() % 90;
            EXPECT_EQ(bits(fish->transformmat[12]), START_COORDINATES[x]) << x;
            EXPECT_EQ(bits(fish->transformmat[13]), START_COORDINATES[y]) << y;
            EXPECT_EQ(bits(fish->transformmat[14]), 0u);
            EXPECT_THAT(fish->transformmat[0], SameBits(0.001f));
            EXPECT_THAT(fish->transformmat[5], SameBits(0.001f));
            EXPECT_THAT(fish->transformmat[10], SameBits(0.001f));
            seen.insert({x, y});
        }
        for (int i = 0; i < 6; ++i) {
            random.next(); // the sensors' velocities
        }
        EXPECT_EQ(std::rand(), random.next());
    }
    EXPECT_EQ(seen.size(), 90u) << "another seed is needed to see them all";
}

TEST(FreshEnvironmentTest, WhatAnEnvironmentHasNoUseForIsEmpty)
{
    Node* const node = newWorld(1);
    EXPECT_EQ(node->getType(), RTTI_USER0);
    node->doupdate();
    node->drawBBox();
    node->userEvent(nullptr);
    node->addTexture(nullptr);
    node->addGeometry(nullptr);
    node->print();
    node->cleanup();
    EXPECT_EQ(node->getTexture(), nullptr);
    EXPECT_EQ(node->getBBox(), nullptr);
    EXPECT_EQ(node->getGeometry(), nullptr);
    EXPECT_EQ(node->children.size(), 103u);
}

class EnvironmentTest : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        world = newWorld(1);
        skipTextures(world);
    }

    /// A one-texel texture instead of the picture of the water.
    void colorWater(unsigned char red, unsigned char green, unsigned char blue)
    {
        const unsigned char texel[] = {red, green, blue, 255};
        glGenTextures(1, world->tex->getId());
        glBindTexture(GL_TEXTURE_2D, *world->tex->getId());
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexImage2D(GL_TEXTURE_2D, 0, 4, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, texel);
        glBindTexture(GL_TEXTURE_2D, 0);
    }

    Environment* world = nullptr;
};

TEST_F(EnvironmentTest, TheFirstCullMakesPlaneBoxAndGridLines)
{
    EXPECT_EQ(world->cull(), 1);
    EXPECT_TRUE(world->initialized);
    ASSERT_NE(world->geom, nullptr);
    EXPECT_TRUE(glIsList(world->geom->list));
    EXPECT_TRUE(glIsList(world->bucketList));
    EXPECT_THAT(world->bbox.bounds, ElementsAre(0, 0, 0, 1, 1, 0));
    Geometry* const plane = world->geom;
    const GLuint lines = world->bucketList;
    world->cull();
    EXPECT_EQ(world->geom, plane) << "once";
    EXPECT_EQ(world->bucketList, lines);
}

TEST_F(EnvironmentTest, AnEnvironmentOutOfViewIsInitializedButNotDrawn)
{
    glTranslatef(5, 0, 0);
    EXPECT_EQ(world->cull(), -1);
    EXPECT_TRUE(world->initialized);
    EXPECT_EQ(emitt, 0) << "not drawn";
    glLoadIdentity();
    glTranslatef(0, -1, 0); // its lower half is below the window
    EXPECT_EQ(world->cull(), 1);
    EXPECT_EQ(emitt, 1);
    glLoadIdentity();
    glTranslatef(1, 0, 0); // it only touches the window's right edge
    EXPECT_EQ(world->cull(), -1);
    EXPECT_EQ(emitt, 1);
}

TEST_F(EnvironmentTest, ThePlaneIsTheTexturedUnitSquare)
{
    world->initialize();
    const ExactFeedback feedback(2);
    const auto plane = feedback.of([this] { world->draw(); });
    const auto expected = feedback.of([] {
        const float corners[4][3] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
        glColor3f(0.5f, 0.5f, 0.5f);
        drawTexturedQuad(corners);
    });
    EXPECT_EQ(difference(plane, expected), "") << "neither grid lines nor children";
}

TEST_F(EnvironmentTest, TheWaterIsDrawnAtHalfBrightness)
{
    colorWater(200, 100, 40);
    world->cull();
    const auto inside = pixel(WIDTH / 2 + 100, HEIGHT / 2 + 100);
    EXPECT_NEAR(inside[0], 100, 1);
    EXPECT_NEAR(inside[1], 50, 1);
    EXPECT_NEAR(inside[2], 20, 1);
    EXPECT_EQ(pixel(WIDTH / 2 - 10, HEIGHT / 2 + 100)[0], 0) << "beside it";
    EXPECT_FALSE(isEnabled(GL_TEXTURE_2D));
    EXPECT_EQ(getInteger(GL_TEXTURE_BINDING_2D), 0);
    glDeleteTextures(1, world->tex->getId());
}

TEST_F(EnvironmentTest, WithoutATextureThePlaneIsGray)
{
    Texture* const owned = std::exchange(world->tex, nullptr);
    world->cull();
    world->tex = owned;
    const auto inside = pixel(WIDTH / 2 + 100, HEIGHT / 2 + 100);
    EXPECT_NEAR(inside[0], 128, 1);
    EXPECT_NEAR(inside[2], 128, 1);
}

TEST_F(EnvironmentTest, WithoutAPlaneOnlyBubblesAreEmitted)
{
    for (int call = 1; call <= 16; ++call) {
        world->draw(); // never initialized
    }
    EXPECT_EQ(world->children.size(), 106u);
    EXPECT_EQ(pixel(WIDTH / 2 + 100, HEIGHT / 2 + 100)[0], 0);
}

TEST_F(EnvironmentTest, TheFirstDrawLoadsTheTexture)
{
    world->tex->loaded = false;
    world->tex->imageFormat = static_cast<IMAGE_TYPE>(99); // no file is read for an unknown kind
    world->cull();
    EXPECT_TRUE(world->tex->isLoaded());
}

TEST_F(EnvironmentTest, TheSixteenthDrawAndEveryFifteenthAfterItEmitsThreeBubbles)
{
    world->initialize();
    std::size_t children = 103;
    for (int call = 1; call <= 50; ++call) {
        world->draw();
        children += call == 16 || call == 31 || call == 46 ? 3 : 0;
        EXPECT_EQ(world->children.size(), children) << "call " << call;
    }
}

TEST_F(EnvironmentTest, BubblesRiseFromThreePlacesOfTheLowerEdge)
{
    world->initialize();
    emitt = 15;
    std::srand(9);
    ReferenceRandom random(9);
    world->draw();
    EXPECT_EQ(emitt, 1);
    const std::vector<Boid*> boids = boidsOf(world);
    ASSERT_EQ(boids.size(), 103u);
    const float places[] = {0.5f, 0.8f, 0.2f};
    for (std::size_t i = 0; i < 3; ++i) {
        Boid* const bubble = boids[100 + i];
        EXPECT_THAT(bubble->transformmat[12], SameBits(places[i]));
        EXPECT_THAT(bubble->transformmat[13], SameBits(0.01f));
        EXPECT_THAT(bubble->transformmat[14], SameBits(0.0f));
        EXPECT_THAT(bubble->transformmat[0], SameBits(0.001f));
        EXPECT_EQ(bubble->getId(), 10);
        EXPECT_EQ(bubble->type, BOID_BUBBLE);
        EXPECT_EQ(bubble->sensorList, &world->sensorList);
        EXPECT_EQ(bubble->bubbleTex, world->bubbleTex);
        EXPECT_EQ(bubble->boider->tex, world->bubbleTex);
        EXPECT_EQ(bubble->getParent(), world);
        EXPECT_EQ(bubble->counter, 0);
        const int r = random.next();
        const int s = random.next();
        EXPECT_THAT(bubble->vel, IsVec3(static_cast<float>(s % 100 - 50) / 10.0f,
                                        static_cast<float>(r % 100 - 50) / 10.0f, 0));
    }
    EXPECT_EQ(std::rand(), random.next());
}

TEST_F(EnvironmentTest, TheGridLinesAreAHundredAndOneInEachDirection)
{
    world->initialize();
    const auto lines = ExactFeedback(2).of([this] { glCallList(world->bucketList); });
    ASSERT_EQ(lines.size(), 202u);
    Single at = 0.0f;
    for (std::size_t i = 0; i < 101; ++i) {
        const auto& across = lines[i].vertices;
        EXPECT_EQ(across[0].x, 0);
        EXPECT_EQ(across[1].x, 1);
        EXPECT_EQ(across[0].y, at.value);
        EXPECT_EQ(across[1].y, at.value);
        const auto& up = lines[101 + i].vertices;
        EXPECT_EQ(up[0].x, at.value);
        EXPECT_EQ(up[1].x, at.value);
        EXPECT_EQ(up[0].y, 0);
        EXPECT_EQ(up[1].y, 1);
        EXPECT_THAT(across[0].color, ElementsAre(0.5f, 0.5f, 0.5f, 1));
        at = Single(at.wide() + 0.01);
    }
    EXPECT_NEAR(lines[100].vertices[0].y, 0.99999934, 1e-8);
}

} // namespace
