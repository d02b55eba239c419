#include "GLTest.h"

#include <FL/Fl.H>
#include <FL/Fl_Gl_Window.H>
#include <cstring>

namespace {

class ContextWindow : public Fl_Gl_Window {
public:
    ContextWindow() : Fl_Gl_Window(0, 0, GLTest::WIDTH, GLTest::HEIGHT)
    {
        mode(FL_DOUBLE | FL_ACCUM | FL_ALPHA | FL_DEPTH);
        end();
        border(0);
    }
    void draw() override {}
};

ContextWindow* window()
{
    // Lives until the program ends: closing it would take the context away from later tests.
    static auto* const instance = new ContextWindow;
    return instance;
}

} // namespace

void GLTest::SetUpTestSuite()
{
    if (!window()->shown()) {
        window()->show();
        while (!window()->visible() || !window()->shown()) {
            Fl::wait(0.05);
        }
        window()->make_current();
        ASSERT_EQ(glewInit(), static_cast<GLenum>(GLEW_OK));
    }
}

void GLTest::SetUp()
{
    window()->make_current();
    window()->valid(1);
    glDrawBuffer(GL_BACK);
    glReadBuffer(GL_BACK);
    glViewport(0, 0, WIDTH, HEIGHT);
    glScissor(0, 0, WIDTH, HEIGHT);
    for (const GLenum mode : {GL_PROJECTION, GL_TEXTURE, GL_MODELVIEW}) {
        glMatrixMode(mode);
        glLoadIdentity();
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    for (const GLenum what : {GL_TEXTURE_2D, GL_BLEND, GL_DEPTH_TEST, GL_LIGHTING,
                              GL_COLOR_MATERIAL, GL_SCISSOR_TEST, GL_CULL_FACE}) {
        glDisable(what);
    }
    glBlendFunc(GL_ONE, GL_ZERO);
    glColor4f(1, 1, 1, 1);
    glLineWidth(1);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    ASSERT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

void GLTest::TearDown()
{
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

std::vector<unsigned char> GLTest::pixel(int x, int y)
{
    std::vector<unsigned char> rgba(4);
    glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
    return rgba;
}

std::vector<unsigned char> GLTest::pixels()
{
    std::vector<unsigned char> rgba(std::size_t{4} * WIDTH * HEIGHT);
    glReadPixels(0, 0, WIDTH, HEIGHT, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
    return rgba;
}

GLint GLTest::getInteger(GLenum what)
{
    GLint value = 0;
    glGetIntegerv(what, &value);
    return value;
}

std::vector<float> GLTest::getMatrix(GLenum what)
{
    std::vector<float> m(16);
    glGetFloatv(what, m.data());
    return m;
}

std::vector<Feedback::Primitive> Feedback::parse(const std::vector<float>& buffer, GLint used)
{
    std::vector<Primitive> primitives;
    std::size_t at = 0;
    const auto end = static_cast<std::size_t>(used > 0 ? used : 0);
    while (at < end) {
        const auto token = static_cast<GLenum>(buffer[at++]);
        std::size_t count = 1;
        if (token == GL_POLYGON_TOKEN) {
            count = static_cast<std::size_t>(buffer[at++]);
        } else if (token == GL_LINE_TOKEN || token == GL_LINE_RESET_TOKEN) {
            count = 2;
        } else if (token == GL_PASS_THROUGH_TOKEN) {
            ++at;
            continue;
        }
        Primitive primitive{token, std::vector<Vertex>(count)};
        for (Vertex& vertex : primitive.vertices) {
            static_assert(sizeof(Vertex) == 11 * sizeof(float));
            std::memcpy(&vertex, &buffer[at], sizeof(Vertex));
            at += 11;
        }
        primitives.push_back(primitive);
    }
    return primitives;
}
