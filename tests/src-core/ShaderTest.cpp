#include "Shader.h"

#include "GLTest.h"
#include "ImageFiles.h"

#include <filesystem>
#include <sys/stat.h>

namespace {

using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

Bytes text(const std::string& source)
{
    return {source.begin(), source.end()};
}

const std::string VERTEX = "void main() { gl_Position = ftransform(); }\n";
const std::string FRAGMENT = "void main() { gl_FragColor = vec4(1.0); }"; // no line end

class ShaderTest : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        CaptureStdout();
        CaptureStderr();
    }
    /// Nothing here prints.
    void TearDown() override
    {
        EXPECT_EQ(GetCapturedStderr(), "");
        EXPECT_EQ(GetCapturedStdout(), "");
        GLTest::TearDown();
    }

    static GLint parameter(const Shader& shader, GLenum what)
    {
        GLint value = -1;
        glGetObjectParameterivARB(shader.handle, what, &value);
        return value;
    }

    static std::string source(const Shader& shader)
    {
        std::string buffer(1000, '\0');
        GLsizei length = 0;
        glGetShaderSourceARB(shader.handle, static_cast<GLsizei>(buffer.size()), &length,
                             buffer.data());
        buffer.resize(static_cast<std::size_t>(length));
        return buffer;
    }

    /// What create makes of a path; 0: nothing.
    static GLhandleARB made(const char* path)
    {
        Shader shader;
        EXPECT_EQ(shader.create(path, GL_VERTEX_SHADER_ARB), &shader.handle);
        return shader.getHandle();
    }
};

TEST_F(ShaderTest, StartsWithoutAnObject)
{
    const Shader shader;
    EXPECT_EQ(shader.getHandle(), 0u);
}

TEST_F(ShaderTest, CompilesTheWholeFileOfEitherType)
{
    const std::pair<GLenum, std::string> cases[] = {{GL_VERTEX_SHADER_ARB, VERTEX},
                                                    {GL_FRAGMENT_SHADER_ARB, FRAGMENT}};
    for (const auto& [type, code] : cases) {
        const TempPath path(".glsl");
        path.write(text(code));
        Shader shader;
        EXPECT_EQ(shader.create(path.name(), type), &shader.handle);
        EXPECT_NE(shader.getHandle(), 0u);
        EXPECT_EQ(shader.getHandle(), shader.handle);
        EXPECT_EQ(parameter(shader, GL_OBJECT_SUBTYPE_ARB), static_cast<GLint>(type));
        EXPECT_EQ(parameter(shader, GL_OBJECT_COMPILE_STATUS_ARB), 1);
        EXPECT_EQ(source(shader), code);
    }
}

TEST_F(ShaderTest, ASourceThatDoesNotCompilePassesSilently)
{
    const TempPath path(".glsl");
    path.write(text("this is no shader"));
    Shader shader;
    shader.create(path.name(), GL_FRAGMENT_SHADER_ARB);
    EXPECT_NE(shader.getHandle(), 0u);
    EXPECT_EQ(parameter(shader, GL_OBJECT_COMPILE_STATUS_ARB), 0);
}

TEST_F(ShaderTest, TheDestructorDeletesTheObject)
{
    const TempPath path(".glsl");
    path.write(text(VERTEX));
    GLhandleARB handle = 0;
    {
        Shader shader;
        handle = *shader.create(path.name(), GL_VERTEX_SHADER_ARB);
        EXPECT_TRUE(glIsShader(handle));
    }
    EXPECT_FALSE(glIsShader(handle));
}

TEST_F(ShaderTest, AFileThatCannotBeReadMakesNoObject)
{
    const TempPath missing(".glsl");
    const TempPath empty(".glsl");
    empty.write({});
    const TempPath pipe(".glsl");
    ASSERT_EQ(mkfifo(pipe.name(), 0600), 0);
    EXPECT_EQ(made(nullptr), 0u);
    EXPECT_EQ(made(missing.name()), 0u);
    EXPECT_EQ(made(empty.name()), 0u);
    EXPECT_EQ(made(pipe.name()), 0u);
    EXPECT_EQ(made(testing::TempDir().c_str()), 0u);
    EXPECT_EQ(made("/proc/self/mem"), 0u); // says it has no bytes
}

TEST_F(ShaderTest, AFileOfMoreThan16MiBMakesNoObject)
{
    const TempPath path(".glsl");
    path.write(text(VERTEX));
    std::filesystem::resize_file(path.name(), 16 << 20);
    EXPECT_NE(made(path.name()), 0u);
    std::filesystem::resize_file(path.name(), (16 << 20) + 1);
    EXPECT_EQ(made(path.name()), 0u);
    std::filesystem::resize_file(path.name(), std::uintmax_t{3} << 30);
    EXPECT_EQ(made(path.name()), 0u);
}

TEST_F(ShaderTest, ARefusedFileKeepsTheObject)
{
    const TempPath path(".glsl");
    path.write(text(VERTEX));
    Shader shader;
    const GLhandleARB handle = *shader.create(path.name(), GL_VERTEX_SHADER_ARB);
    EXPECT_EQ(*shader.create(nullptr, GL_VERTEX_SHADER_ARB), handle);
}

TEST_F(ShaderTest, CreateClosesTheFile)
{
    const TempPath path(".glsl");
    path.write(text(VERTEX));
    Shader shader;
    shader.create(path.name(), GL_VERTEX_SHADER_ARB);
    EXPECT_FALSE(path.isOpen());
}

TEST_F(ShaderTest, WithoutEntryPointsNothingIsCalled)
{
    const TempPath path(".glsl");
    path.write(text(VERTEX));
    const auto create = __glewCreateShaderObjectARB;
    const auto destroy = __glewDeleteObjectARB;
    __glewCreateShaderObjectARB = nullptr;
    __glewDeleteObjectARB = nullptr;
    EXPECT_EQ(made(path.name()), 0u);
    __glewCreateShaderObjectARB = create;
    __glewDeleteObjectARB = destroy;
}

} // namespace
