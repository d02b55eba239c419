#include "Boid.h"
#include "Environment.h"
#include "HeldMessages.h"
#include "NullGL.h"
#include "Stage.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

/// The fish of the scene, with the media that the build makes: where the figures lead them.

namespace {

constexpr int VOICE = 120; // seconds
constexpr int LATER = 60;  // seconds after its end
#ifdef KELPIX_SANITIZED
constexpr unsigned SCENES = 3; // the sanitizers make it fifteen times slower
#else
constexpr unsigned SCENES = 20;
#endif

/// How many fish there are at certain times.
struct Counts {
    int atTheEnd; ///< of the voice
    int later;
};

int countFish(const Stage& stage)
{
    return static_cast<int>(
        std::count_if(stage.water->children.begin(), stage.water->children.end(), [](Node* child) {
            const auto* boid = static_cast<Boid*>(child);
            return child->getType() == RTTI_PARTICLE && boid->type == BOID_FISH &&
                   !boid->outOfBound;
        }));
}

Counts play(unsigned seed)
{
    nullgl::reset();
    const HeldMessages messages;
    Stage stage(740, 740, seed, {VOICE * 44100LL, 44100});
    stage.draw();
    Counts counts{};
    constexpr int STEPS = (VOICE + LATER) * Stage::STEPS_PER_SECOND;
    for (int step = 1; step <= STEPS; ++step) {
        stage.update();
        // Of a frame only the water changes the scene, by its bubbles, and the removal of those
        // that have left it.
        if (step % 20 == 0) {
            stage.draw();
        } else {
            stage.water->draw();
        }
        if (step == VOICE * Stage::STEPS_PER_SECOND) {
            counts.atTheEnd = countFish(stage);
        }
    }
    counts.later = countFish(stage);
    return counts;
}

int medianOf(std::vector<int> values)
{
    std::sort(values.begin(), values.end());
    return values[(values.size() - 1) / 2];
}

TEST(SchoolsTest, StayWhenTheFiguresHaveLeft)
{
    std::filesystem::current_path(KELPIX_MEDIA_DIR);
    std::vector<int> atTheEnd;
    std::vector<int> later;
    for (unsigned seed = 1; seed <= SCENES; ++seed) {
        const Counts counts = play(seed);
        atTheEnd.push_back(counts.atTheEnd);
        later.push_back(counts.later);
    }
    EXPECT_GE(medianOf(atTheEnd), 85);
    EXPECT_GE(medianOf(later), 80);
    RecordProperty("atTheEnd", medianOf(atTheEnd));
    RecordProperty("later", medianOf(later));
}

} // namespace
