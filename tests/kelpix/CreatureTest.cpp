#include "Creature.h"

#include "Bits.h"
#include "GLTest.h"
#include "ImageFiles.h"
#include "ObjAPI.h"
#include "Sensor.h"
#include "SensorRep.h"
#include "TempDirectory.h"
#include "Texture.h"

#include <array>
#include <cmath>
#include <deque>
#include <filesystem>
#include <set>
#include <utility>

namespace {

/// Sensors at rest at given positions, and the list of them that a creature follows.
class Group {
public:
    Group() = default;
    explicit Group(std::initializer_list<Vec3> positions)
    {
        for (const Vec3& at : positions) {
            sensors.emplace_back().pos = at;
            list.push_back(&sensors.back());
        }
    }
    Group(const Group&) = delete;
    Group& operator=(const Group&) = delete;
    ~Group()
    {
        for (const Sensor& sensor : sensors) {
            delete sensor.rep;
        }
    }

    std::deque<Sensor> sensors;
    std::vector<Node*> list;
};

/// A new creature. It stays, as its texture does, until the process ends.
Creature& newCreature()
{
    static auto* const all = new std::deque<Creature>;
    return all->emplace_back();
}

TEST(CreatureUpdateTest, StartsAtRestWithATextureThatIsNotRead)
{
    testing::internal::CaptureStdout();
    Creature& creature = newCreature();
    EXPECT_TRUE(Vec3::Equal(creature.pos, Vec3()));
    EXPECT_TRUE(Vec3::Equal(creature.vel, Vec3()));
    EXPECT_EQ(creature.sensorList, nullptr);
    EXPECT_EQ(creature.model, 0);
    EXPECT_FALSE(creature.initialized);
    ASSERT_NE(creature.tex, nullptr);
    EXPECT_STREQ(creature.tex->imageFileName, "data/squid.png");
    EXPECT_EQ(creature.tex->imageFormat, IMAGE_PNG);
    EXPECT_EQ(static_cast<int>(creature.tex->imageFormat), 1);
    EXPECT_FALSE(creature.tex->isLoaded());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(CreatureUpdateTest, HasItsTypeAndNothingToGet)
{
    Creature& creature = newCreature();
    Node& node = creature;
    EXPECT_EQ(node.getType(), RTTI_USER2);
    EXPECT_EQ(static_cast<int>(node.getType()), 7);
    Texture other("other.png", IMAGE_PNG);
    node.addTexture(&other);
    EXPECT_NE(creature.tex, &other);
    EXPECT_EQ(node.getTexture(), nullptr);
    EXPECT_EQ(node.getBBox(), nullptr);
    EXPECT_EQ(node.getGeometry(), nullptr);
}

TEST(CreatureUpdateTest, MovesATenthOfTheWayToTheCenterOfItsSensors)
{
    Group group{{1, 0, 0}, {0, 1, 0}};
    Creature& creature = newCreature();
    creature.sensorList = &group.list;
    creature.update();
    EXPECT_EQ(creature.vel.x, 0.05f);
    EXPECT_EQ(creature.vel.y, 0.05f);
    EXPECT_EQ(creature.transformmat[12], 0.05f);
    EXPECT_EQ(creature.transformmat[13], 0.05f);
    EXPECT_EQ(creature.transformmat[14], 0);
}

TEST(CreatureUpdateTest, PosIsWhereItWasBeforeTheMove)
{
    Group group{{1, 0, 0}, {0, 1, 0}};
    Creature& creature = newCreature();
    creature.sensorList = &group.list;
    creature.translate(0.25f, -0.5f, 2);
    creature.update();
    EXPECT_TRUE(Vec3::Equal(creature.pos, Vec3(0.25f, -0.5f, 2)));
    EXPECT_NE(creature.transformmat[12], 0.25f);
}

TEST(CreatureUpdateTest, EasesInToTheBit)
{
    Group group{{0.3f, 0.7f, 0}, {0.55f, 0.62f, 0}, {0.81f, 0.4f, 0}};
    Creature& creature = newCreature();
    creature.sensorList = &group.list;
    volatile float x = 0.1f;
    volatile float y = 0.9f;
    creature.translate(x, y, 0);
    for (int tick = 0; tick < 200; ++tick) {
        // Each step rounded to single precision, in the order of the list.
        volatile float cx = 0.3f + 0.55f;
        cx = cx + 0.81f;
        cx = cx / 3.0f;
        volatile float cy = 0.7f + 0.62f;
        cy = cy + 0.4f;
        cy = cy / 3.0f;
        volatile float vx = cx - x;
        vx = vx * 0.1f;
        volatile float vy = cy - y;
        vy = vy * 0.1f;
        x = x + vx;
        y = y + vy;
        creature.update();
        ASSERT_THAT(creature.vel.x, SameBits(static_cast<float>(vx))) << "tick " << tick;
        ASSERT_THAT(creature.vel.y, SameBits(static_cast<float>(vy))) << "tick " << tick;
        ASSERT_THAT(creature.transformmat[12], SameBits(static_cast<float>(x))) << "tick " << tick;
        ASSERT_THAT(creature.transformmat[13], SameBits(static_cast<float>(y))) << "tick " << tick;
    }
    EXPECT_NEAR(creature.transformmat[12], (0.3 + 0.55 + 0.81) / 3, 1e-6);
    EXPECT_NEAR(creature.transformmat[13], (0.7 + 0.62 + 0.4) / 3, 1e-6);
}

TEST(CreatureUpdateTest, KeepsItsDepth)
{
    Group group{{0, 0, 4}, {0, 0, 6}};
    Creature& creature = newCreature();
    creature.sensorList = &group.list;
    creature.translate(0, 0, 3);
    creature.update();
    // The center's depth shows in vel, the creature's own is not taken off it.
    EXPECT_EQ(creature.vel.z, 5 * 0.1f);
    EXPECT_EQ(creature.transformmat[14], 3);
}

TEST(CreatureUpdateTest, WithoutSensorsItsTranslationIsNotFinite)
{
    Group nobody;
    Creature& creature = newCreature();
    creature.sensorList = &nobody.list;
    creature.update();
    EXPECT_FALSE(std::isfinite(creature.transformmat[12]));
    EXPECT_FALSE(std::isfinite(creature.transformmat[13]));
}

TEST(CreatureUpdateTest, AnUnsetListCountsAsAnEmptyOne)
{
    Creature& creature = newCreature();
    creature.update();
    EXPECT_FALSE(std::isfinite(creature.transformmat[12]));
    EXPECT_FALSE(std::isfinite(creature.transformmat[13]));
}

/// Below a temporary folder with a model of one triangle and a red picture of 2 by 2 pixels.
class CreatureTest : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        std::filesystem::create_directory("data");
        TempDirectory::write("data/cube.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
        const TempPath red(".png");
        writePng(red, {2, 2, 4, {255, 0, 0, 255, 255, 0, 0, 255, 255, 0, 0, 255, 255, 0, 0, 255}});
        std::filesystem::copy_file(red.name(), "data/squid.png");
    }

private:
    TempDirectory directory;
};

TEST_F(CreatureTest, TheFirstCullRegistersTheModelOnce)
{
    const int before = obj_num_file();
    Creature& first = newCreature();
    EXPECT_EQ(first.cull(), 1);
    EXPECT_EQ(first.cull(), 1);
    EXPECT_TRUE(first.initialized);
    EXPECT_EQ(first.model, before);
    EXPECT_EQ(obj_num_file(), before + 1);
    EXPECT_EQ(obj_num_vert(first.model), 3);

    Creature& second = newCreature();
    second.cull();
    EXPECT_EQ(second.model, before + 1);
    EXPECT_NE(second.cGeometry, first.cGeometry);
}

TEST_F(CreatureTest, AMissingModelIsAnEmptyOne)
{
    std::filesystem::remove("data/cube.obj");
    Creature& creature = newCreature();
    EXPECT_EQ(creature.cull(), 1);
    EXPECT_EQ(creature.model, obj_num_file() - 1);
    EXPECT_EQ(obj_num_vert(creature.model), 0);
}

/// The vertices of all primitives of a kind, in drawing order. GL may cut a polygon into triangles.
std::vector<Feedback::Vertex> verticesOf(const std::vector<Feedback::Primitive>& drawn, bool lines)
{
    std::vector<Feedback::Vertex> all;
    for (const Feedback::Primitive& primitive : drawn) {
        if ((primitive.token != GL_POLYGON_TOKEN) == lines) {
            all.insert(all.end(), primitive.vertices.begin(), primitive.vertices.end());
        }
    }
    return all;
}

TEST_F(CreatureTest, CullDrawsThroughTheVirtualTable)
{
    class Probe : public Creature {
    public:
        int drawn = 0;
        void draw() override { ++drawn; }
    };
    static auto* const probe = new Probe; // stays, as every creature does
    probe->drawn = 0;
    EXPECT_EQ(static_cast<Node*>(probe)->cull(), 1);
    EXPECT_EQ(probe->drawn, 1);
}

TEST_F(CreatureTest, ItsBodyIsATexturedSquareInHalfTransparentWhite)
{
    Creature& creature = newCreature();
    creature.cull();
    const auto drawn = Feedback::of([&] { creature.draw(); });
    EXPECT_TRUE(verticesOf(drawn, true).empty());
    // Texture coordinates and place; the fixture's viewport takes -1..1 to 0..740.
    const long low = std::lround((1 - 0.2) * 370);
    const long high = std::lround((1 + 0.2) * 370);
    const std::set<std::array<long, 4>> corners = {
        {0, 0, low, low}, {1, 0, high, low}, {1, 1, high, high}, {0, 1, low, high}};
    std::set<std::array<long, 4>> seen;
    for (const Feedback::Vertex& v : verticesOf(drawn, false)) {
        seen.insert({std::lround(v.texture[0]), std::lround(v.texture[1]), std::lround(v.x),
                     std::lround(v.y)});
        EXPECT_EQ(v.color[0], 1);
        EXPECT_EQ(v.color[1], 1);
        EXPECT_EQ(v.color[2], 1);
        EXPECT_NEAR(v.color[3], 0.5, 1e-6);
    }
    EXPECT_EQ(seen, corners);
}

TEST_F(CreatureTest, ALineLeadsToEachSensor)
{
    Group group{{0.5f, 0, 0}, {-0.25f, 0.75f, 0}};
    Creature& creature = newCreature();
    creature.sensorList = &group.list;
    creature.pos.set(0.25f, 0.5f, 0);
    creature.cull();
    const auto ends = verticesOf(Feedback::of([&] { creature.draw(); }), true);
    ASSERT_EQ(ends.size(), 4u);
    const float expected[4][2] = {{0, 0}, {0.25f, -0.5f}, {0, 0}, {-0.5f, 0.25f}}; // sensor - pos
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_NEAR(ends[i].x, 370 + 370 * expected[i][0], 0.01) << i;
        EXPECT_NEAR(ends[i].y, 370 + 370 * expected[i][1], 0.01) << i;
    }
}

TEST_F(CreatureTest, TheLinesAreFourPixelsWide)
{
    Group group{{0.8f, 0, 0}};
    Creature& creature = newCreature();
    creature.sensorList = &group.list;
    creature.cull();
    int lit = 0;
    for (int y = 0; y < HEIGHT; ++y) {
        lit += pixel(600, y)[0] != 0; // to the right of the square
    }
    EXPECT_EQ(lit, 4);
    EXPECT_THAT(static_cast<int>(pixel(600, 370)[1]),
                testing::AllOf(testing::Ge(127), testing::Le(128)));
}

TEST_F(CreatureTest, ItsPictureIsReadByTheFirstDrawAndBlendedOver)
{
    glClearColor(0, 0, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    Creature& creature = newCreature();
    creature.cull();
    EXPECT_TRUE(creature.tex->isLoaded());
    const GLuint name = *creature.tex->getId();
    const std::vector<unsigned char> body = pixel(400, 330);
    EXPECT_NEAR(body[0], 127.5, 1);
    EXPECT_EQ(body[1], 0);
    EXPECT_NEAR(body[2], 127.5, 1);
    creature.cull();
    EXPECT_EQ(*creature.tex->getId(), name) << "the picture was read again";
}

TEST_F(CreatureTest, WithoutATextureItIsAWhiteSquare)
{
    Creature& creature = newCreature();
    delete std::exchange(creature.tex, nullptr);
    EXPECT_EQ(creature.cull(), 1);
    EXPECT_NEAR(pixel(400, 330)[0], 127.5, 1);
    EXPECT_NEAR(pixel(400, 330)[1], 127.5, 1);
}

TEST_F(CreatureTest, AMissingPictureIsDrawnAllTheSame)
{
    std::filesystem::remove("data/squid.png");
    testing::internal::CaptureStderr();
    Creature& creature = newCreature();
    EXPECT_EQ(creature.cull(), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Can't open file data/squid.png\n");
    EXPECT_TRUE(creature.tex->isLoaded());
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_VALUE)) << "the upload of no picture";
}

TEST_F(CreatureTest, LeavesTexturingAndBlendingOffAndLinesThin)
{
    Group group{{0.5f, 0, 0}};
    Creature& creature = newCreature();
    creature.sensorList = &group.list;
    creature.cull();
    EXPECT_FALSE(isEnabled(GL_TEXTURE_2D));
    EXPECT_EQ(getInteger(GL_TEXTURE_BINDING_2D), 0);
    EXPECT_FALSE(isEnabled(GL_BLEND));
    EXPECT_EQ(getInteger(GL_BLEND_SRC), GL_SRC_ALPHA);
    EXPECT_EQ(getInteger(GL_BLEND_DST), GL_ONE_MINUS_SRC_ALPHA);
    EXPECT_EQ(getInteger(GL_LINE_WIDTH), 1);
}

TEST_F(CreatureTest, ACreatureThatLostItsPlaceDrawsWithoutHarm)
{
    Group group{{0.5f, 0, 0}};
    Creature& creature = newCreature();
    creature.update();
    creature.update();
    EXPECT_TRUE(std::isnan(creature.pos.x));
    creature.sensorList = &group.list;
    EXPECT_EQ(creature.cull(), 1);
}

} // namespace
