#include "NullGL.h"

#include <GL/glew.h>

#include <GL/glu.h>
#include <array>
#include <cmath>
#include <gmock/gmock.h>
#include <vector>

namespace {

using Elements = std::array<float, 16>;
using testing::ElementsAre;
using testing::FloatNear;
using testing::Pointwise;

Elements matrix(GLenum which = GL_MODELVIEW_MATRIX)
{
    Elements m{};
    glGetFloatv(which, m.data());
    return m;
}

GLint integer(GLenum what)
{
    GLint value = -1;
    glGetIntegerv(what, &value);
    return value;
}

/// As the functions of Matrices.cpp, written down once more.
Elements product(const Elements& a, const Elements& b)
{
    Elements result{};
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = 0; j < 4; ++j) {
            float sum = a[i] * b[4 * j];
            for (std::size_t k = 1; k < 4; ++k) {
                sum += a[i + 4 * k] * b[4 * j + k];
            }
            result[4 * j + i] = sum;
        }
    }
    return result;
}

constexpr Elements IDENTITY = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
constexpr Elements A = {0.1f, 0.7f, -0.3f, 0.2f, 1.1f, 0.9f,  0.4f, -2.3f,
                        3.7f, 0.6f, 0.05f, 1.3f, 8.1f, -7.2f, 0.3f, 0.9f};
constexpr Elements B = {2.3f, 1.7f, 0.35f, 0.9f, -1.7f, 0.13f, 4.4f,  0.77f,
                        0.8f, 5.6f, 0.95f, 0.1f, 0.31f, 1.21f, -6.3f, 0.19f};

class NullGLTest : public testing::Test {
protected:
    NullGLTest() { nullgl::reset(); }
    ~NullGLTest() override { EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)); }
};

TEST_F(NullGLTest, AFreshContextHasIdentityMatrices)
{
    EXPECT_EQ(matrix(GL_MODELVIEW_MATRIX), IDENTITY);
    EXPECT_EQ(matrix(GL_PROJECTION_MATRIX), IDENTITY);
    EXPECT_EQ(matrix(GL_TEXTURE_MATRIX), IDENTITY);
    EXPECT_EQ(integer(GL_MATRIX_MODE), GL_MODELVIEW);
    EXPECT_EQ(integer(GL_MODELVIEW_STACK_DEPTH), 1);
    EXPECT_EQ(integer(GL_UNPACK_ALIGNMENT), 4);
    EXPECT_EQ(nullgl::lists(), 0u);
    EXPECT_EQ(nullgl::textures(), 0u);
    EXPECT_EQ(nullgl::listCommands(), 0);
}

TEST_F(NullGLTest, MatricesAreMultipliedInSinglePrecisionFromTheLeft)
{
    glLoadMatrixf(A.data());
    glMultMatrixf(B.data());
    EXPECT_EQ(matrix(), product(A, B));
}

TEST_F(NullGLTest, TranslationAndScalingAreProductsWithTheirMatrices)
{
    glLoadMatrixf(A.data());
    glTranslatef(0.3f, -1.7f, 2.9f);
    const Elements translation = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0.3f, -1.7f, 2.9f, 1};
    EXPECT_EQ(matrix(), product(A, translation));

    glLoadMatrixf(A.data());
    glScalef(0.3f, -1.7f, 2.9f);
    const Elements scaling = {0.3f, 0, 0, 0, 0, -1.7f, 0, 0, 0, 0, 2.9f, 0, 0, 0, 0, 1};
    EXPECT_EQ(matrix(), product(A, scaling));
}

TEST_F(NullGLTest, EachModeHasAStackOfItsOwn)
{
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(A.data());
    glMatrixMode(GL_TEXTURE);
    glLoadMatrixf(B.data());
    glPushMatrix();
    EXPECT_EQ(integer(GL_TEXTURE_STACK_DEPTH), 2);
    EXPECT_EQ(integer(GL_PROJECTION_STACK_DEPTH), 1);
    EXPECT_EQ(matrix(GL_MODELVIEW_MATRIX), IDENTITY);
    EXPECT_EQ(matrix(GL_PROJECTION_MATRIX), A);
    EXPECT_EQ(matrix(GL_TEXTURE_MATRIX), B);
}

TEST_F(NullGLTest, PopBringsBackWhatWasPushed)
{
    glLoadMatrixf(A.data());
    glPushMatrix();
    glMultMatrixf(B.data());
    glPushMatrix();
    glLoadIdentity();
    glPopMatrix();
    EXPECT_EQ(matrix(), product(A, B));
    glPopMatrix();
    EXPECT_EQ(matrix(), A);
}

TEST_F(NullGLTest, AStackHolds32Matrices)
{
    for (int depth = 1; depth < 32; ++depth) {
        glPushMatrix();
    }
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    glPushMatrix();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_STACK_OVERFLOW));
    EXPECT_EQ(integer(GL_MODELVIEW_STACK_DEPTH), 32);
    for (int depth = 1; depth < 32; ++depth) {
        glPopMatrix();
    }
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    glPopMatrix();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_STACK_UNDERFLOW));
    EXPECT_EQ(integer(GL_MODELVIEW_STACK_DEPTH), 1);
}

TEST_F(NullGLTest, GLUWorksThroughIt)
{
    glMatrixMode(GL_PROJECTION);
    gluPerspective(60, 2, 0.01, 100);
    const float f = static_cast<float>(1 / std::tan(std::acos(-1.0) / 6));
    const Elements perspective = {f / 2, 0, 0,           0,  0, f, 0,          0, //
                                  0,     0, -1.0002000f, -1, 0, 0, -0.020002f, 0};
    EXPECT_THAT(matrix(GL_PROJECTION_MATRIX), Pointwise(FloatNear(1e-6f), perspective));

    glMatrixMode(GL_MODELVIEW);
    gluLookAt(1, 2, 3, 1, 2, 0, 0, 1, 0); // straight along -z
    const Elements view = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -1, -2, -3, 1};
    EXPECT_EQ(matrix(), view);

    glMatrixMode(GL_TEXTURE);
    gluOrtho2D(0, 4, 0, 8);
    const Elements ortho = {0.5f, 0, 0, 0, 0, 0.25f, 0, 0, 0, 0, -1, 0, -1, -1, 0, 1};
    EXPECT_EQ(matrix(GL_TEXTURE_MATRIX), ortho);
    EXPECT_EQ(nullgl::calls("glMultMatrixd") + nullgl::calls("glMultMatrixf"), 2);
}

TEST_F(NullGLTest, GLUBuildsItsMipmaps)
{
    const std::array<unsigned char, 3 * 8 * 4> image{};
    EXPECT_EQ(gluBuild2DMipmaps(GL_TEXTURE_2D, 3, 8, 4, GL_RGB, GL_UNSIGNED_BYTE, image.data()), 0);
    EXPECT_EQ(nullgl::calls("glTexImage2D"), 5); // a proxy, then 8x4, 4x2, 2x1 and 1x1
    EXPECT_EQ(integer(GL_UNPACK_ALIGNMENT), 4);
}

TEST_F(NullGLTest, AttributesComeBackAsFarAsTheyWereAskedFor)
{
    glViewport(1, 2, 30, 40);
    glPushAttrib(GL_TRANSFORM_BIT | GL_LIST_BIT);
    glMatrixMode(GL_PROJECTION);
    glListBase(77);
    glViewport(0, 0, 5, 5);
    glPopAttrib();
    EXPECT_EQ(integer(GL_MATRIX_MODE), GL_MODELVIEW);
    EXPECT_EQ(integer(GL_LIST_BASE), 0);
    std::array<GLint, 4> viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    EXPECT_THAT(viewport, ElementsAre(0, 0, 5, 5));
    glPopAttrib();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_STACK_UNDERFLOW));
}

TEST_F(NullGLTest, PixelStorageComesBackFromTheClientsAttributes)
{
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 9);
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 3);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 2);
    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    glPopClientAttrib();
    EXPECT_EQ(integer(GL_UNPACK_ROW_LENGTH), 3);
    glPopClientAttrib();
    EXPECT_EQ(integer(GL_UNPACK_ROW_LENGTH), 9);
    EXPECT_EQ(integer(GL_UNPACK_SKIP_ROWS), 0);
    glPopClientAttrib();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_STACK_UNDERFLOW));
}

TEST_F(NullGLTest, ACompiledCommandActsWhenItsListIsCalled)
{
    const GLuint list = glGenLists(1);
    glNewList(list, GL_COMPILE);
    glTranslatef(1, 2, 3);
    glBegin(GL_POINTS);
    glVertex2f(0, 0);
    glEnd();
    EXPECT_EQ(integer(GL_LIST_INDEX), static_cast<GLint>(list));
    glEndList();
    EXPECT_EQ(matrix(), IDENTITY);
    EXPECT_EQ(nullgl::listCommands(list), 4);

    glCallList(list);
    glCallList(list);
    const Elements moved = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 2, 4, 6, 1};
    EXPECT_EQ(matrix(), moved);
    EXPECT_EQ(nullgl::calls("glTranslatef"), 1);
    EXPECT_EQ(nullgl::calls("glCallList"), 2);
}

TEST_F(NullGLTest, ACommandCanBeCompiledAndActAtOnce)
{
    const GLuint list = glGenLists(1);
    glNewList(list, GL_COMPILE_AND_EXECUTE);
    glScalef(2, 2, 2);
    glEndList();
    EXPECT_EQ(matrix()[0], 2);
    glCallList(list);
    EXPECT_EQ(matrix()[0], 4);
}

TEST_F(NullGLTest, TextCallsTheListsOfItsCharacters)
{
    const GLuint base = glGenLists(128);
    for (const char character : {'a', 'b'}) {
        glNewList(base + static_cast<GLuint>(character), GL_COMPILE);
        glTranslatef(character == 'a' ? 1.0f : 10.0f, 0, 0);
        glEndList();
    }
    glListBase(base);
    glCallLists(4, GL_UNSIGNED_BYTE, "abba");
    EXPECT_EQ(matrix()[12], 22);
}

TEST_F(NullGLTest, AListThatCallsItselfComesToAnEnd)
{
    const GLuint list = glGenLists(1);
    glNewList(list, GL_COMPILE);
    glTranslatef(1, 0, 0);
    glCallList(list);
    glEndList();
    glCallList(list);
    EXPECT_EQ(matrix()[12], 64); // as deep as OpenGL has lists call each other at least
}

TEST_F(NullGLTest, WhatIsNeverCompiledActsWhileAListIsOpen)
{
    glNewList(glGenLists(1), GL_COMPILE);
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glEndList();
    EXPECT_NE(texture, 0u);
    EXPECT_EQ(integer(GL_UNPACK_ALIGNMENT), 1);
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), 0);
    glCallList(1);
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), static_cast<GLint>(texture));
}

TEST_F(NullGLTest, ListsAreCountedUntilTheyAreDeleted)
{
    const GLuint first = glGenLists(240);
    EXPECT_NE(first, 0u);
    EXPECT_EQ(nullgl::lists(), 240u);
    EXPECT_EQ(glGenLists(1), first + 240);
    EXPECT_EQ(nullgl::lists(), 241u);
    glDeleteLists(first + 10, 5);
    EXPECT_EQ(nullgl::lists(), 236u);
    EXPECT_FALSE(glIsList(first + 14));
    EXPECT_TRUE(glIsList(first + 15));
    glDeleteLists(first + 10, 5); // names that are not there
    glDeleteLists(0, 1);
    EXPECT_EQ(nullgl::lists(), 236u);
    EXPECT_EQ(glGenLists(0), 0u);
    EXPECT_EQ(glGenLists(-1), 0u);

    glNewList(5000, GL_COMPILE); // a name of one's own
    glEndList();
    EXPECT_EQ(nullgl::lists(), 237u);
    EXPECT_EQ(glGenLists(2), 5001u);
}

TEST_F(NullGLTest, ADeletedListHoldsNothing)
{
    const GLuint list = glGenLists(1);
    glNewList(list, GL_COMPILE);
    glTranslatef(1, 0, 0);
    glEndList();
    EXPECT_EQ(nullgl::listCommands(), 1);
    glDeleteLists(list, 1);
    EXPECT_EQ(nullgl::listCommands(), 0);
    glCallList(list);
    EXPECT_EQ(matrix(), IDENTITY);
}

TEST_F(NullGLTest, NamesAreGivenOutAgain)
{
    const GLuint kept = glGenLists(2);
    for (int i = 0; i < 1000; ++i) {
        const GLuint list = glGenLists(3);
        ASSERT_EQ(list, kept + 2);
        glDeleteLists(list, 3);
    }
    glDeleteLists(kept, 1);
    EXPECT_EQ(glGenLists(1), kept);
    EXPECT_EQ(nullgl::lists(), 2u);
}

TEST_F(NullGLTest, TexturesAreCountedUntilTheyAreDeleted)
{
    std::array<GLuint, 3> names{};
    glGenTextures(3, names.data());
    glBindTexture(GL_TEXTURE_2D, names[1]);
    EXPECT_EQ(nullgl::textures(), 3u);
    glDeleteTextures(2, names.data());
    EXPECT_EQ(nullgl::textures(), 1u);
    EXPECT_FALSE(glIsTexture(names[1]));
    EXPECT_TRUE(glIsTexture(names[2]));
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), 0);
}

TEST_F(NullGLTest, CallsAreCountedByName)
{
    for (int i = 0; i < 5; ++i) {
        glVertex2f(0, 0);
    }
    glFlush();
    EXPECT_EQ(nullgl::calls("glVertex2f"), 5);
    EXPECT_EQ(nullgl::calls("glVertex3f"), 0);
    EXPECT_EQ(nullgl::calls("no function"), 0);
    EXPECT_THAT(nullgl::calls(),
                ElementsAre(testing::Pair("glFlush", 1), testing::Pair("glVertex2f", 5)));
    nullgl::resetCalls();
    EXPECT_TRUE(nullgl::calls().empty());
}

/// What the hooks were called with.
struct Hooked {
    static inline std::vector<float> numbers;
    static inline const void* pixels = nullptr;

    Hooked()
    {
        numbers.clear();
        nullgl::hooks() = {.image =
                               [](int width, int height, unsigned format, const void* data) {
                                   numbers = {static_cast<float>(width), static_cast<float>(height),
                                              static_cast<float>(format)};
                                   pixels = data;
                               },
                           .vertex =
                               [](float x, float y) {
                                   numbers = {x, y};
                               }};
    }
    Hooked(const Hooked&) = delete;
    Hooked& operator=(const Hooked&) = delete;
    ~Hooked() { nullgl::hooks() = {}; }
};

TEST_F(NullGLTest, TheHooksGetVerticesAndImages)
{
    glVertex2f(1, 2); // without a hook
    const Hooked hooked;
    glVertex2f(0.5f, -3);
    EXPECT_THAT(Hooked::numbers, ElementsAre(0.5f, -3));
    const unsigned char pixels[6] = {};
    glTexImage2D(GL_TEXTURE_2D, 0, 3, 2, 1, 0, GL_RGB, GL_UNSIGNED_BYTE, pixels);
    EXPECT_THAT(Hooked::numbers, ElementsAre(2, 1, GL_RGB));
    EXPECT_EQ(Hooked::pixels, pixels);
    Hooked::numbers.clear();
    glTexImage2D(GL_PROXY_TEXTURE_2D, 0, 3, 2, 1, 0, GL_RGB, GL_UNSIGNED_BYTE, nullptr);
    EXPECT_THAT(Hooked::numbers, testing::IsEmpty()) << "a proxy has no pixels";
    nullgl::reset();
    glVertex2f(7, 8);
    EXPECT_THAT(Hooked::numbers, ElementsAre(7, 8)) << "a reset leaves the hooks";
}

TEST_F(NullGLTest, AQueryOfWhatIsNotKeptLeavesItsOutputAlone)
{
    EXPECT_EQ(integer(GL_MAX_LIGHTS), -1);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_ENUM));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(NullGLTest, GLEWFindsAGLWithoutExtensions)
{
    EXPECT_EQ(glewInit(), static_cast<GLenum>(GLEW_OK));
    EXPECT_TRUE(GLEW_VERSION_1_1);
    EXPECT_FALSE(GLEW_ARB_vertex_buffer_object);
    EXPECT_FALSE(GLEW_ARB_vertex_shader);
    EXPECT_EQ(glGenBuffersARB, nullptr);
    EXPECT_EQ(glCreateShaderObjectARB, nullptr);
}

} // namespace
