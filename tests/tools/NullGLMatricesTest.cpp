#include "GLTest.h"

#include "NullGL.h"

#include <array>
#include <dlfcn.h>
#include <random>

/// The matrices of nullgl against those of the system's OpenGL, whose functions are asked for in
/// its library: by name alone, this program has those of nullgl.

namespace {

/// One function of the system's OpenGL.
template<typename Function>
Function* real(const char* name)
{
    static void* const library = dlopen("libOpenGL.so.0", RTLD_NOW);
    return library ? reinterpret_cast<Function*>(dlsym(library, name)) : nullptr;
}

using Elements = std::array<float, 16>;
using Numbers = std::array<double, 6>;

/// One command that changes a matrix, of nullgl and of the system.
struct Command {
    const char* name;
    void (*null)(const Numbers&);
    void (*system)(const Numbers&);
};

float single(double number)
{
    return static_cast<float>(number);
}

Elements elements(const Numbers& n)
{
    return {single(n[0]), single(n[1]), 0.1f, 0.01f, single(n[2]), single(n[3]), 0.2f, -0.02f,
            0.3f,         0.4f,         1.1f, 0,     single(n[4]), single(n[5]), 0.5f, 1};
}

const Command COMMANDS[] = {
    {"glLoadIdentity", [](const Numbers&) { glLoadIdentity(); },
     [](const Numbers&) { real<void()>("glLoadIdentity")(); }},
    {"glTranslatef",
     [](const Numbers& n) { glTranslatef(single(n[0]), single(n[1]), single(n[2])); },
     [](const Numbers& n) {
         real<void(float, float, float)>("glTranslatef")(single(n[0]), single(n[1]), single(n[2]));
     }},
    {"glTranslated", [](const Numbers& n) { glTranslated(n[0], n[1], n[2]); },
     [](const Numbers& n) {
         real<void(double, double, double)>("glTranslated")(n[0], n[1], n[2]);
     }},
    {"glScalef", [](const Numbers& n) { glScalef(single(n[0]), single(n[1]), single(n[2])); },
     [](const Numbers& n) {
         real<void(float, float, float)>("glScalef")(single(n[0]), single(n[1]), single(n[2]));
     }},
    {"glScaled", [](const Numbers& n) { glScaled(n[0], n[1], n[2]); },
     [](const Numbers& n) { real<void(double, double, double)>("glScaled")(n[0], n[1], n[2]); }},
    {"glRotatef",
     [](const Numbers& n) {
         glRotatef(single(100 * n[0]), single(n[1]), single(n[2]), single(n[3]));
     },
     [](const Numbers& n) {
         real<void(float, float, float, float)>("glRotatef")(single(100 * n[0]), single(n[1]),
                                                             single(n[2]), single(n[3]));
     }},
    {"glMultMatrixf", [](const Numbers& n) { glMultMatrixf(elements(n).data()); },
     [](const Numbers& n) { real<void(const float*)>("glMultMatrixf")(elements(n).data()); }},
    {"glOrtho", [](const Numbers& n) { glOrtho(n[0], n[0] + 2, n[1], n[1] + 3, n[2], n[2] + 4); },
     [](const Numbers& n) {
         real<void(double, double, double, double, double, double)>("glOrtho")(
             n[0], n[0] + 2, n[1], n[1] + 3, n[2], n[2] + 4);
     }},
    {"glFrustum", [](const Numbers& n) { glFrustum(n[0], n[0] + 2, n[1], n[1] + 3, 0.5, 4); },
     [](const Numbers& n) {
         real<void(double, double, double, double, double, double)>("glFrustum")(
             n[0], n[0] + 2, n[1], n[1] + 3, 0.5, 4);
     }},
};

class NullGLMatricesTest : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        nullgl::reset();
        ASSERT_NE(real<void()>("glLoadIdentity"), nullptr) << dlerror();
        real<void(GLenum)>("glMatrixMode")(GL_MODELVIEW);
        real<void()>("glLoadIdentity")();
    }

    static Elements realMatrix()
    {
        Elements m{};
        real<void(GLenum, float*)>("glGetFloatv")(GL_MODELVIEW_MATRIX, m.data());
        return m;
    }

    static Elements nullMatrix()
    {
        Elements m{};
        glGetFloatv(GL_MODELVIEW_MATRIX, m.data());
        return m;
    }

    /// Equal but for a few roundings of the largest element.
    static void compare()
    {
        const Elements a = nullMatrix();
        const Elements b = realMatrix();
        float largest = 1;
        for (const float element : b) {
            largest = std::max(largest, std::fabs(element));
        }
        for (std::size_t i = 0; i < 16; ++i) {
            ASSERT_NEAR(a[i], b[i], 2e-6f * largest) << "element " << i;
        }
    }
};

TEST_F(NullGLMatricesTest, TheSystemsFunctionsAreOthers)
{
    glTranslatef(1, 2, 3);
    EXPECT_EQ(nullMatrix()[12], 1);
    EXPECT_EQ(realMatrix()[12], 0);
}

TEST_F(NullGLMatricesTest, EachCommandDoesTheSame)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> number(-2, 2);
    for (const Command& command : COMMANDS) {
        SCOPED_TRACE(command.name);
        for (int i = 0; i < 50; ++i) {
            Numbers numbers{};
            for (double& n : numbers) {
                n = number(random);
            }
            const Elements start = elements({1.3, 0.2, -0.1, 0.8, 3.1, number(random)});
            glLoadMatrixf(start.data());
            real<void(const float*)>("glLoadMatrixf")(start.data());
            command.null(numbers);
            command.system(numbers);
            ASSERT_NO_FATAL_FAILURE(compare());
        }
    }
}

TEST_F(NullGLMatricesTest, ARotationAboutNoAxisTurnsNothing)
{
    glRotatef(30, 0, 0, 0);
    real<void(float, float, float, float)>("glRotatef")(30, 0, 0, 0);
    compare();
}

TEST_F(NullGLMatricesTest, AChainOfNodesGivesTheSame)
{
    std::mt19937 random(2);
    std::uniform_real_distribution<double> number(0.5, 1.5);
    for (int depth = 0; depth < 15; ++depth) {
        const Numbers numbers = {number(random), 0.1, -0.1, number(random), 0.3, number(random)};
        glPushMatrix();
        glMultMatrixf(elements(numbers).data());
        real<void()>("glPushMatrix")();
        real<void(const float*)>("glMultMatrixf")(elements(numbers).data());
        ASSERT_NO_FATAL_FAILURE(compare());
    }
    for (int depth = 0; depth < 15; ++depth) {
        glPopMatrix();
        real<void()>("glPopMatrix")();
        ASSERT_NO_FATAL_FAILURE(compare());
    }
}

} // namespace
