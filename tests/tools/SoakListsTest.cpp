#include "Sample.h"

#include "GLTest.h"
#include "Stage.h"

#include <algorithm>
#include <filesystem>
#include <memory>

/// The display lists of the scene in the system's own OpenGL, which counts none: a list that
/// exists answers to its name.

namespace {

class SoakListsTest : public GLTest {
protected:
    SoakListsTest() : before(std::filesystem::current_path())
    {
        std::filesystem::current_path(KELPIX_MEDIA_DIR);
    }
    ~SoakListsTest() override { std::filesystem::current_path(before); }

    static std::size_t existingLists()
    {
        constexpr GLuint BEYOND = 5000; // several times what the scene needs
        std::size_t count = 0;
        for (GLuint name = 1; name < BEYOND; ++name) {
            count += glIsList(name) == GL_TRUE ? 1 : 0;
        }
        return count;
    }

private:
    std::filesystem::path before;
};

TEST_F(SoakListsTest, AnOpenGLHoldsThoseOfTheLivingNodes)
{
    testing::internal::CaptureStdout();
    // Few pixels, for nobody looks at them. The voice ends soon, and boids leave.
    Stage stage(16, 16, 3, {44100, 44100});
    std::size_t most = 0;
    ASSERT_EQ(existingLists(), 0u);
    for (int step = 0; step < 400; ++step) {
        stage.update();
        stage.draw();
        if (step % 20 == 0) {
            const std::size_t lists = existingLists();
            ASSERT_EQ(lists, soak::countNodes(stage.water).listsOfNodes) << "step " << step;
            most = std::max(most, lists);
        }
    }
    testing::internal::GetCapturedStdout();
    // 78 bubbles were made, and most of their lists deleted again.
    constexpr std::size_t fixed = 128 + 2 + 3 + 3 * 241;
    EXPECT_GT(most, fixed + 50);
    EXPECT_LT(most, fixed + 100 + 60);
}

} // namespace
