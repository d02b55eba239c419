// The program itself, ended at any moment from the appearance of its window on.

#include "Scene.h"

#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <thread>

namespace {

using testing::EndsWith;
using testing::StartsWith;

class ProgramEndTest : public testing::Test {
protected:
    const std::string start = Scene::startText(Scene::media());
    const std::string whole = start + Scene::firstFrameText() + Scene::firstBubblesText();

    /// Starts it, waits for its window and a moment longer, and ends it; \p end takes the scene and
    /// its window.
    template<typename End>
    void endAfter(std::chrono::milliseconds wait, End end) const
    {
        SCOPED_TRACE("after " + std::to_string(wait.count()) + " ms");
        Scene scene(Scene::media(), {{"MESA_DEBUG", "1"}});
        const std::string window = scene.newWindow();
        std::this_thread::sleep_for(wait);
        end(scene, window);
        EXPECT_EQ(scene.program.wait(), 0);
        const std::string printed = scene.program.output();
        EXPECT_THAT(printed, StartsWith(start));
        EXPECT_THAT(printed, EndsWith("\n"));
        EXPECT_THAT(whole, StartsWith(printed));
        EXPECT_EQ(scene.program.errors(), "");
    }

    /// Ends four programs: one at once, the others within two seconds.
    template<typename End>
    void endAtAnyMoment(unsigned seed, End end) const
    {
        std::mt19937 random(seed);
        for (const unsigned longest : {1u, 100u, 500u, 2000u}) {
            endAfter(std::chrono::milliseconds(random() % longest), end);
        }
    }
};

TEST_F(ProgramEndTest, QEndsItAtAnyMoment)
{
    endAtAnyMoment(1, [](Scene& scene, const std::string& window) { scene.press("q", window); });
}

TEST_F(ProgramEndTest, ClosingItsWindowEndsItAtAnyMoment)
{
    endAtAnyMoment(2, [](Scene& scene, const std::string& window) { scene.askToClose(window); });
}

} // namespace
