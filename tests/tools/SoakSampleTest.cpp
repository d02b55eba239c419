#include "Sample.h"

#include "Boid.h"
#include "Environment.h"
#include "Goals.h"
#include "NullGL.h"
#include "Stage.h"

#include <GL/glew.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>

/// What is counted in the scene of the media that the build makes.

namespace {

class SoakSampleTest : public testing::Test {
protected:
    SoakSampleTest() : before(std::filesystem::current_path())
    {
        std::filesystem::current_path(KELPIX_MEDIA_DIR);
        nullgl::reset();
        testing::internal::CaptureStdout();
        stage = std::make_unique<Stage>(740, 740, 3, Stage::Voice{44100, 44100});
        play(120);
        testing::internal::GetCapturedStdout();
    }
    ~SoakSampleTest() override { std::filesystem::current_path(before); }

    void play(int steps)
    {
        for (int step = 0; step < steps; ++step) {
            stage->update();
            stage->draw();
        }
    }

    soak::Sample sample() const
    {
        soak::Sample counted = soak::countNodes(stage->water);
        counted.lists = nullgl::lists();
        return counted;
    }

    std::unique_ptr<Stage> stage;

private:
    std::filesystem::path before;
};

TEST_F(SoakSampleTest, NodesAreCountedByKind)
{
    std::size_t fish = 0;
    std::size_t bubbles = 0;
    for (Node* child : stage->water->children) {
        if (child->getType() == RTTI_PARTICLE) {
            const bool isFish = static_cast<Boid*>(child)->type == BOID_FISH;
            ++(isFish ? fish : bubbles);
        }
    }
    EXPECT_EQ(sample().fish, fish);
    EXPECT_EQ(sample().bubbles, bubbles);
    EXPECT_GT(bubbles, 12u);
}

TEST_F(SoakSampleTest, TheNodesAccountForAllLists)
{
    // The font's, the plane's and the grid's, three textures', three bodies', and the sprites'.
    const std::size_t fixed = 128 + 2 + 3 + 3 * 241;
    const std::size_t shown = nullgl::lists() - fixed;
    EXPECT_GT(shown, 100u);
    EXPECT_LE(shown, sample().fish + sample().bubbles);
    for (int step = 0; step < 400; ++step) {
        play(1);
        ASSERT_EQ(sample().lists, sample().listsOfNodes) << "step " << step;
    }
}

TEST_F(SoakSampleTest, AListThatNoNodeAccountsForFailsTheRun)
{
    // The second of the three goals, which a run of one sample does not have.
    std::vector<soak::Sample> samples = {sample(), sample()};
    EXPECT_TRUE(soak::judge(samples).at(1).met);
    glGenLists(1);
    samples.push_back(sample());
    EXPECT_FALSE(soak::judge(samples).at(1).met);
}

TEST_F(SoakSampleTest, TheSlotsAreThoseOfAllCells)
{
    const std::size_t slots = sample().slots;
    EXPECT_GE(slots, sample().fish);
    Bucket* const cell = stage->water->getBucketIndex()->query(9.5f, 0.5f);
    cell->boidList.resize(cell->boidList.size() + 7);
    EXPECT_EQ(sample().slots, slots + 7);
    cell->boidList.resize(cell->boidList.size() - 7);
}

TEST_F(SoakSampleTest, AHeapThatGrowsIsSeen)
{
#ifdef KELPIX_SANITIZED
    GTEST_SKIP() << "the sanitizer has a heap of its own";
#endif
    const std::size_t before = soak::heapInUse();
    auto block = std::make_unique<std::vector<char>>(100000);
    EXPECT_GE(soak::heapInUse(), before + 100000);
    block.reset();
    EXPECT_LT(soak::heapInUse(), before + 1000);

    const std::vector<char> large(8 << 20); // mapped on its own, outside the arenas
    EXPECT_GE(soak::heapInUse(), before + (8 << 20));
}

} // namespace
