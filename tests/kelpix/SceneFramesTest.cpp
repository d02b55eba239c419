// A hundred frames of the whole scene with the generated media, for valgrind to look at: small, and
// on a clock of their own.

#include "Environment.h"
#include "Stage.h"

#include "GLTest.h"

#include <algorithm>
#include <filesystem>

namespace {

using SceneFramesTest = GLTest;

TEST_F(SceneFramesTest, AHundredFramesAreDrawn)
{
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(KELPIX_MEDIA);
    testing::internal::CaptureStdout();
    // What is in it lives as long as the program.
    static auto* const stage = new Stage(160, 160, 1, Stage::Voice{441000, 44100});
    for (int frame = 0; frame < 100; ++frame) {
        stage->update();
        stage->draw();
    }
    const std::string printed = testing::internal::GetCapturedStdout();
    std::filesystem::current_path(before);
    EXPECT_EQ(std::count(printed.begin(), printed.end(), '-'), 6) << "three figures:\n" << printed;
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_NE(pixel(80, 80), (std::vector<unsigned char>{5, 26, 38, 255})) << "nothing is drawn";
    EXPECT_GT(stage->water->getChildList()->size(), 103u) << "no bubbles";
}

} // namespace
