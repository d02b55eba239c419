// The GL calls of the running program, in their order, as apitrace records them.

#include "GLTrace.h"
#include "Scene.h"

#include <array>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <thread>

namespace {

using testing::DoubleNear;
using testing::Pointwise;

/// The calls of the sensors' bodies, which come before the first buffer swap: 240 frames of 6
/// segments of 15 by 16 quads of 10 calls for each of three. Too many to look at.
constexpr long BODY_CALLS = 3L * 240 * 6 * 15 * 16 * 10;

using Matrix4 = std::array<double, 16>;

Matrix4 product(const Matrix4& a, const Matrix4& b)
{
    Matrix4 out{};
    for (std::size_t row = 0; row < 4; ++row) {
        for (std::size_t column = 0; column < 4; ++column) {
            for (std::size_t k = 0; k < 4; ++k) {
                out[4 * column + row] += a[4 * k + row] * b[4 * column + k];
            }
        }
    }
    return out;
}

Matrix4 matrixOf(const std::string& argument)
{
    const std::vector<double> numbers = numbersOf(argument);
    EXPECT_EQ(numbers.size(), 16u) << argument;
    Matrix4 m{};
    std::copy_n(numbers.begin(), std::min<std::size_t>(numbers.size(), 16), m.begin());
    return m;
}

/// What one frame showed.
struct Sights {
    int fish = 0;
    int sensors = 0;
    int bubbles = 0;
    int hidden = 0; ///< boids out of view
    int dead = 0;
    std::set<std::string> spriteLists;
};

/// Reads one frame, and checks it call by call against the scene: root, pivot, water, and the
/// water's children: fish with their sprites, sensors with their bodies, bubbles with their
/// sprites.
class FrameReader {
public:
    explicit FrameReader(TraceReader& reader) : trace(reader) {}

    Sights read()
    {
        // The eye stands at z = 1 and looks at the origin.
        frames = {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, -1, 1}};
        trace.take("glDrawBuffer", {"GL_BACK"}); // FLTK's
        trace.take("glClear", {"GL_DEPTH_BUFFER_BIT | GL_COLOR_BUFFER_BIT"});
        trace.take("glMatrixMode", {"GL_MODELVIEW"});
        enter();
        takeModelview(); // the root looks for the viewer
        trace.take("glPushMatrix");
        enter();
        takeModelview(); // so does the pivot
        trace.take("glPushMatrix");
        readWater();
        trace.take("glPopMatrix");
        leave();
        trace.take("glPopMatrix");
        leave();
        trace.take("glFlush");
        trace.take("glXSwapBuffers");
        return sights;
    }

private:
    TraceReader& trace;
    std::vector<Matrix4> frames;
    Sights sights;

    /// A node's transform is multiplied in, and its world matrix read back.
    void enter()
    {
        trace.take("glPushMatrix");
        frames.push_back(
            product(frames.back(), matrixOf(trace.take("glMultMatrixf").arguments[0])));
        takeModelview();
    }
    void leave()
    {
        trace.take("glPopMatrix");
        frames.pop_back();
    }
    void takeModelview()
    {
        const GLCall& call = trace.take("glGetFloatv");
        EXPECT_EQ(call.arguments[0], "GL_MODELVIEW_MATRIX");
        EXPECT_THAT(matrixOf(call.arguments[1]), Pointwise(DoubleNear(1e-5), frames.back()));
    }
    /// A node takes the view volume.
    void takeFrustum()
    {
        const GLCall& call = trace.take("glGetFloatv");
        EXPECT_EQ(call.arguments[0], "GL_PROJECTION_MATRIX");
        const double f = std::sqrt(3.0);
        const Matrix4 projection = {f,  0, 0, 0,          0, f, 0, 0, 0, 0, -100.01 / 99.99,
                                    -1, 0, 0, -2 / 99.99, 0};
        EXPECT_THAT(matrixOf(call.arguments[1]), Pointwise(DoubleNear(1e-5), projection));
        takeModelview();
    }

    void readWater()
    {
        enter();
        EXPECT_THAT(frames.back(),
                    Pointwise(DoubleNear(1e-6),
                              Matrix4{1.2, 0, 0, 0, 0, 1.2, 0, 0, 0, 0, 1, 0, -0.6, -0.6, -1, 1}));
        takeFrustum();
        trace.take("glEnable", {"GL_TEXTURE_2D"});
        trace.take("glBindTexture");
        trace.take("glColor3f", {"0.5", "0.5", "0.5"});
        trace.take("glCallList");
        trace.take("glBindTexture", {"GL_TEXTURE_2D", "0"});
        trace.take("glDisable", {"GL_TEXTURE_2D"});
        while (trace.isNext("glPushMatrix")) {
            readChild();
        }
        leave();
    }

    void readChild()
    {
        trace.take("glPushMatrix");
        if (trace.isNext("glDeleteLists")) {
            trace.take("glDeleteLists"); // the sprite of a dead boid
            ++sights.dead;
        } else if (trace.isNext("glPopMatrix")) {
            ++sights.dead;
        } else {
            enter();
            if (trace.isNext("glPushMatrix")) {
                readBody();
            } else {
                readBoid();
            }
            leave();
        }
        trace.take("glPopMatrix");
    }

    void readBoid()
    {
        takeFrustum();
        if (trace.isNext("glPopMatrix")) {
            ++sights.hidden;
            return;
        }
        const bool bubble = trace.isNext("glEnable");
        if (bubble) {
            readOutline();
        }
        EXPECT_EQ(bubble, sights.sensors == 3) << "fish come before the sensors, bubbles after";
        ++(bubble ? sights.bubbles : sights.fish);
        trace.take("glPushMatrix");
        readSprite();
        trace.take("glPopMatrix");
    }

    void readOutline()
    {
        takeBlending();
        trace.take("glColor4f", {"0.8", "0.8", "1", "0.5"});
        trace.take("glBegin", {"GL_LINE_LOOP"});
        for (int i = 0; i < 360; ++i) {
            trace.take("glVertex2f");
        }
        trace.take("glEnd");
        trace.take("glDisable", {"GL_BLEND"});
    }

    void readSprite()
    {
        enter();
        if (trace.isNext("glGenLists")) {
            readSpriteList();
        }
        trace.take("glColor4f", {"1", "1", "1", "0.5"});
        takeBlending();
        trace.take("glEnable", {"GL_TEXTURE_2D"});
        trace.take("glBindTexture");
        sights.spriteLists.insert(trace.take("glCallList").arguments[0]);
        trace.take("glBindTexture", {"GL_TEXTURE_2D", "0"});
        trace.take("glDisable", {"GL_TEXTURE_2D"});
        trace.take("glDisable", {"GL_BLEND"});
        leave();
    }

    /// Made when a sprite is drawn for the first time.
    void readSpriteList()
    {
        const std::string list = trace.take("glGenLists", {"1"}).result;
        trace.take("glNewList", {list, "GL_COMPILE"});
        trace.take("glBegin", {"GL_POLYGON"});
        trace.take("glTexCoord2f", {"0", "0"});
        trace.take("glVertex2f", {"-20", "-20"});
        trace.take("glTexCoord2f", {"1", "0"});
        trace.take("glVertex2f", {"20", "-20"});
        trace.take("glTexCoord2f", {"1", "1"});
        trace.take("glVertex2f", {"20", "20"});
        trace.take("glTexCoord2f", {"0", "1"});
        trace.take("glVertex2f", {"-20", "20"});
        trace.take("glEnd");
        trace.take("glEndList");
    }

    /// The child of a sensor.
    void readBody()
    {
        ++sights.sensors;
        trace.take("glPushMatrix");
        enter();
        trace.take("glColor4f", {"0.5", "0.5", "1", "0.5"});
        takeBlending();
        trace.take("glPushMatrix");
        trace.take("glScalef", {"0.3", "0.3", "0.3"});
        trace.take("glCallList");
        trace.take("glPopMatrix");
        trace.take("glDisable", {"GL_BLEND"});
        takeBlending();
        trace.take("glLineWidth", {"3"});
        for (int tentacle = 0; tentacle < 3; ++tentacle) {
            trace.take("glBegin", {"GL_LINE_STRIP"});
            int points = 0;
            for (; trace.isNext("glVertex2f"); ++points) {
                trace.take("glVertex2f");
            }
            EXPECT_LE(points, 24);
            trace.take("glEnd");
        }
        trace.take("glLineWidth", {"1"});
        trace.take("glDisableClientState", {"GL_VERTEX_ARRAY"});
        trace.take("glDisable", {"GL_BLEND"});
        leave();
        trace.take("glPopMatrix");
    }

    void takeBlending()
    {
        trace.take("glEnable", {"GL_BLEND"});
        trace.take("glBlendFunc", {"GL_SRC_ALPHA", "GL_ONE_MINUS_SRC_ALPHA"});
    }
};

/// Plays the scene until bubbles are in view, with apitrace looking on.
class FrameTraceTest : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        file() = testing::TempDir() + "kelpix-XXXXXX";
        const int descriptor = mkstemp(file().data());
        ASSERT_NE(descriptor, -1);
        close(descriptor);
        // How long a frame takes is the machine's affair.
        for (int seconds = 1; seconds < 300 && wholeFrames() < 2; seconds *= 3) {
            ASSERT_NO_FATAL_FAILURE(record(std::chrono::seconds(seconds)));
        }
    }

    static void record(std::chrono::seconds afterBubbles)
    {
        Scene scene({"apitrace", "trace", "-o", file()}, Scene::media());
        ASSERT_TRUE(
            scene.program.waitForOutput(Scene::firstFrameText() + Scene::firstBubblesText()));
        std::this_thread::sleep_for(afterBubbles);
        scene.press("q");
        ASSERT_EQ(scene.program.wait(), 0);
    }

    /// The calls after those that make the bodies.
    static std::vector<GLCall> callsInFrames()
    {
        return callsIn(std::to_string(BODY_CALLS) + "-1000000000");
    }

    /// Frames that begin after the bubbles' picture was loaded.
    static int wholeFrames()
    {
        const std::vector<GLCall> calls = callsInFrames();
        TraceReader trace(calls);
        int ends = 0;
        trace.skipTo("glTexImage2D");
        while (trace.skipTo("glXSwapBuffers")) {
            ++ends;
        }
        return ends - 1;
    }

    static void TearDownTestSuite() { std::filesystem::remove(file()); }

    static std::string& file()
    {
        static std::string path;
        return path;
    }
    static std::vector<GLCall> callsIn(const std::string& range)
    {
        return readTrace(
            printedBy({"apitrace", "dump", "--color=never", "--calls=" + range, file()}));
    }
};

TEST_F(FrameTraceTest, TheFirstFrameSetsGLUp)
{
    const std::vector<GLCall> calls = callsIn("0-20000");
    TraceReader trace(calls);
    try {
        ASSERT_TRUE(trace.skipTo("glClearColor"));
        trace.take("glEnable", {"GL_SCISSOR_TEST"});
        trace.take("glEnable", {"GL_COLOR_MATERIAL"});
        trace.take("glColorMaterial", {"GL_FRONT", "GL_AMBIENT"});
        trace.take("glViewport", {"0", "0", "740", "740"});
        trace.take("glScissor", {"0", "0", "740", "740"});
        trace.take("glMatrixMode", {"GL_PROJECTION"});
        trace.take("glLoadIdentity");
        trace.take("glMultMatrixd"); // gluPerspective
        trace.take("glTranslatef", {"-0", "-0", "0"});
        trace.take("glMatrixMode", {"GL_MODELVIEW"});
        trace.take("glLoadIdentity");
        trace.take("glMultMatrixf"); // gluLookAt
        trace.take("glTranslated", {"-0", "-0", "-1"});
        // The font's lists and textures.
        trace.take("glGenLists", {"128"});
        ASSERT_TRUE(trace.skipTo("glClear"));
        trace.take("glMatrixMode", {"GL_MODELVIEW"});
        trace.take("glPushMatrix");
    } catch (const TraceReader::Mismatch& mismatch) {
        FAIL() << mismatch.what();
    }
}

TEST_F(FrameTraceTest, EachFrameDrawsTheSceneInOrder)
{
    const std::vector<GLCall> calls = callsInFrames();
    TraceReader trace(calls);
    // The bubbles' picture is loaded in the middle of a frame: look at the whole frames after it.
    ASSERT_TRUE(trace.skipTo("glTexImage2D"));
    ASSERT_TRUE(trace.skipTo("glXSwapBuffers"));
    int whole = 0;
    while (trace.isNext("glDrawBuffer")) {
        Sights sights;
        try {
            sights = FrameReader(trace).read();
        } catch (const TraceReader::Mismatch& mismatch) {
            FAIL() << "frame " << whole << ": " << mismatch.what();
        }
        ++whole;
        EXPECT_EQ(sights.sensors, 3);
        EXPECT_GT(sights.fish, 0);
        EXPECT_LE(sights.fish, 100);
        EXPECT_GT(sights.bubbles, 0);
        EXPECT_EQ(sights.spriteLists.size(), static_cast<std::size_t>(sights.fish + sights.bubbles))
            << "each sprite has a list of its own";
    }
    EXPECT_GE(whole, 2);
}

} // namespace
