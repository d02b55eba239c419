#pragma once

#include <GL/glew.h>

#include <gtest/gtest.h>
#include <vector>

/// The fixture of every test that needs a GL context: one 740 by 740 window of FLTK with the
/// scene's own visual (double-buffered, accumulation, alpha, depth), opened once for the program
/// and made current before each test. Each test starts with identity matrices, no texture bound,
/// default blending, and no pending GL error, and ends without one. A test of this fixture is
/// registered with DISPLAY in CMakeLists.txt.
class GLTest : public testing::Test {
public:
    static constexpr int WIDTH = 740;
    static constexpr int HEIGHT = 740;

protected:
    static void SetUpTestSuite();
    void SetUp() override;
    void TearDown() override;

    /// The RGBA bytes of the back buffer's pixel (x, y), origin at the bottom left.
    static std::vector<unsigned char> pixel(int x, int y);

    /// The whole back buffer as RGBA bytes, rows bottom-up, tightly packed.
    static std::vector<unsigned char> pixels();

    static GLint getInteger(GLenum what);
    static bool isEnabled(GLenum what) { return glIsEnabled(what) == GL_TRUE; }
    static std::vector<float> getMatrix(GLenum what);
};

/// Vertices that a draw call produces, caught in GL's feedback buffer (type GL_3D_COLOR_TEXTURE)
/// instead of being drawn: the tokens as the OpenGL 2.1 specification, section 5.3, lays them out.
/// With identity matrices, a vertex (x, y, z) comes back in window coordinates; the fixture's
/// viewport maps x and y from -1..1 to 0..740. Primitives outside the view volume are clipped.
class Feedback {
public:
    struct Vertex {
        float x, y, z;
        float color[4];
        float texture[4];
    };
    struct Primitive {
        GLenum token; ///< GL_POLYGON_TOKEN, GL_LINE_TOKEN, GL_LINE_RESET_TOKEN, GL_POINT_TOKEN
        std::vector<Vertex> vertices;
    };

    template<typename Draw>
    static std::vector<Primitive> of(Draw draw, std::size_t floats = 1 << 20)
    {
        std::vector<float> buffer(floats);
        glFeedbackBuffer(static_cast<GLsizei>(floats), GL_3D_COLOR_TEXTURE, buffer.data());
        glRenderMode(GL_FEEDBACK);
        draw();
        const GLint used = glRenderMode(GL_RENDER);
        EXPECT_GE(used, 0) << "the feedback buffer is too small";
        return parse(buffer, used);
    }

private:
    static std::vector<Primitive> parse(const std::vector<float>& buffer, GLint used);
};
