// shader: compiles a vertex and a fragment shader from two files, links them, and draws a sphere
// with them. Edit the files while it runs, and have it read them again.

#include "Shader.h"
#include "PlainNode.h"
#include "SceneWindow.h"
#include "Shapes.h"
#include "Usage.h"

#include <cstdio>
#include <string>

namespace {

/// \return GL's messages about a shader or a program
std::string logOf(GLhandleARB object)
{
    GLint length = 0;
    glGetObjectParameterivARB(object, GL_OBJECT_INFO_LOG_LENGTH_ARB, &length);
    std::string log(static_cast<std::size_t>(length), '\0');
    glGetInfoLogARB(object, length, &length, log.data());
    log.resize(static_cast<std::size_t>(length));
    return log;
}

bool succeeded(GLhandleARB object, GLenum step)
{
    GLint status = 0;
    glGetObjectParameterivARB(object, step, &status);
    return status != 0;
}

/// Reads and compiles a file, and prints what is wrong with it. Shader itself reports GL errors
/// only, and a mistake in the source is not one.
//! [compile]
bool compile(Shader& shader, const char* path, GLenum type)
{
    shader.create(path, type);
    if (shader.getHandle() == 0) {
        std::fprintf(stderr, "shader: cannot read %s, or this GL has no shaders\n", path);
        return false;
    }
    if (!succeeded(shader.getHandle(), GL_OBJECT_COMPILE_STATUS_ARB)) {
        std::fprintf(stderr, "%s:\n%s", path, logOf(shader.getHandle()).c_str());
        return false;
    }
    return true;
}
//! [compile]

/// \return a program of the two files; 0 when they do not compile or link
//! [link]
GLhandleARB link(const char* vertexPath, const char* fragmentPath)
{
    Shader vertex;
    Shader fragment;
    const bool vertexCompiled = compile(vertex, vertexPath, GL_VERTEX_SHADER_ARB);
    if (!compile(fragment, fragmentPath, GL_FRAGMENT_SHADER_ARB) || !vertexCompiled) {
        return 0;
    }
    const GLhandleARB program = glCreateProgramObjectARB();
    glAttachObjectARB(program, vertex.getHandle());
    glAttachObjectARB(program, fragment.getHandle());
    glLinkProgramARB(program);
    if (!succeeded(program, GL_OBJECT_LINK_STATUS_ARB)) {
        std::fprintf(stderr, "linking:\n%s", logOf(program).c_str());
        glDeleteObjectARB(program);
        return 0;
    }
    return program; // GL keeps the shaders, which are deleted here, until the program is deleted
}
//! [link]

/// A sphere that is drawn with the program, or without one if there is none.
class Sphere final : public PlainNode {
public:
    Sphere(const char* vertex, const char* fragment) : vertexPath(vertex), fragmentPath(fragment) {}

    int cull() override
    {
        if (shape.list == 0) {
            Shapes::sphere(&shape, 0.36f, 128);
        }
        if (stale) {
            reload();
        }
        draw();
        return 1;
    }

    /// Makes a program of the files as they are now; keeps the old one when that fails.
    /// Needs: current GL context.
    void reload()
    {
        stale = false;
        const GLhandleARB next = link(vertexPath, fragmentPath);
        if (next != 0) {
            glDeleteObjectARB(program); // 0 is ignored
            program = next;
            time = glGetUniformLocationARB(program, "time");
            std::puts("shader: in use");
        }
    }

    void draw() override
    {
        glEnable(GL_DEPTH_TEST);
        if (program != 0) {
            glUseProgramObjectARB(program);
            glUniform1fARB(time, seconds);
        }
        glColor3f(0.4f, 0.4f, 0.4f);
        glCallList(shape.list);
        if (program != 0) {
            glUseProgramObjectARB(0);
        }
        glDisable(GL_DEPTH_TEST);
        Shader::GL_err("shader");
    }

    void doupdate() override { seconds += 1.0f / Rates::UPDATES; }

    /// An event comes without a GL context: the next cull reads the files.
    void userEvent(UserEvent*) override { stale = true; }

private:
    const char* vertexPath;
    const char* fragmentPath;
    Geometry shape{};
    GLhandleARB program = 0;
    GLint time = -1; ///< where the uniform is; -1: the shaders do not use it
    float seconds = 0;
    bool stale = true;
};

} // namespace

int main(int argc, char* argv[])
{
    constexpr const char* USAGE = "usage: shader [VERTEX_FILE FRAGMENT_FILE]\n"
                                  "Draws a sphere with these shaders.\n";
    if (const auto status = answerUsage(argc, argv, {0, 2}, USAGE)) {
        return *status;
    }
    std::puts(
        "shader: a sphere drawn with a vertex and a fragment shader\n"
        "  right click  reads the two files again; so does space\n"
        "  wheel        zooms\n"
        "  drag         with v moves, with z, x or c turns the sphere (button first, then key)\n"
        "  q            ends");

    Sphere sphere(argc == 3 ? argv[1] : KELPIX_EXAMPLES "/anemone.vert",
                  argc == 3 ? argv[2] : KELPIX_EXAMPLES "/anemone.frag");
    SceneWindow window(740, 740);
    window.pivot.attachChild(&sphere);
    return window.run() ? 0 : 1;
}
