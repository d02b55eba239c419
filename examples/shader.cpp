// shader: compiles a vertex and a fragment shader from two files, links them, and draws a sphere
// with them. Edit the files while it runs, and have it read them again.

#include <GL/glew.h>

#include "AppManager.h"
#include "PivotNode.h"
#include "RootNode.h"
#include "SceneGraph.h"
#include "Shader.h"
#include "Shapes.h"
#include "Window.h"

#include <FL/Fl.H>
#include <cstdio>
#include <string>

namespace {

/// What GL has to say about a shader or a program.
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

/// Reads and compiles a file, and says what is wrong with it. Shader itself reports GL errors only,
/// and a mistake in the source is none.
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

/// A program of the two files; 0 if there is something wrong with them.
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
    return program; // keeps the shaders, which are deleted here, until it is deleted itself
}

/// A sphere that is drawn with the program, or plain while there is none.
class Sphere final : public Node {
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

    /// Needs: current GL context. Keeps the program it has when the new one is no good.
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

    void doupdate() override { seconds += 1.0f / 40; }

    /// Events come without a GL context: the next frame sees to it.
    void userEvent(UserEvent*) override { stale = true; }

    void drawBBox() override {}
    RTTI_NODE_TYPE getType() const override { return RTTI_USER9; }
    void addTexture(Texture*) override {}
    Texture* getTexture() override { return nullptr; }
    void computeBBox() override {}
    BBox* getBBox() override { return nullptr; }
    void addGeometry(Geometry*) override {}
    Geometry* getGeometry() override { return nullptr; }
    void print() override {}
    void cleanup() override {}

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
    if (argc != 1 && argc != 3) {
        std::fputs("shader [VERTEX_FILE FRAGMENT_FILE]: draws a sphere with these shaders\n",
                   stderr);
        return 2;
    }
    std::puts(
        "shader: a sphere drawn with a vertex and a fragment shader\n"
        "  right click  reads the two files again; so does space\n"
        "  wheel        zooms\n"
        "  drag         with v moves, with z, x or c turns the sphere (button first, then key)\n"
        "  q            ends");

    RootNode root;
    PivotNode pivot;
    Sphere sphere(argc == 3 ? argv[1] : KELPIX_EXAMPLES "/anemone.vert",
                  argc == 3 ? argv[2] : KELPIX_EXAMPLES "/anemone.frag");
    root.attachChild(&pivot);
    pivot.attachChild(&sphere);
    SceneGraph scene;
    scene.setRootNode(&root);
    scene.setPivotNode(&pivot);

    Window window(1, 0, 0, 740, 740);
    window.end();
    window.getRender()->getCamera()->setProjType(1);
    window.getRender()->setSG(&scene);
    AppManager manager;
    manager.addWindow(&window);
    manager.addTimeouts(40, 40);
    while (window.shown()) {
        Fl::wait();
    }
}
