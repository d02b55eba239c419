#include "Shader.h"

#include "GLTest.h"
#include "ImageFiles.h"

#include <string>

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

class ShaderErrorTest : public GLTest {
protected:
    static std::string report(const char* label)
    {
        CaptureStderr();
        Shader::GL_err(label);
        return GetCapturedStderr();
    }
};

/// One test: the first report silences the rest of the program.
TEST_F(ShaderErrorTest, OnlyTheFirstErrorIsReported)
{
    EXPECT_EQ(report("no error"), "");

    // A source that does not compile is reported when GL holds an error.
    const TempPath path(".glsl");
    const std::string source = "this is no shader";
    path.write({source.begin(), source.end()});
    Shader shader;
    glEnable(GL_NONE);
    CaptureStderr();
    shader.create(path.name(), GL_VERTEX_SHADER_ARB);
    EXPECT_EQ(GetCapturedStderr(), "Compile: invalid enumerant\n");
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));

    glEnable(GL_NONE);
    EXPECT_EQ(report("later"), "");
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_ENUM)) << "the error is left to others";
}

} // namespace
