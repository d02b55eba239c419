#include "Boid.h"
#include "Dance.h"
#include "Environment.h"
#include "HeldMessages.h"
#include "NullGL.h"
#include "Stage.h"
#include "TempDirectory.h"
#include "VisibleWorld.h"

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
constexpr unsigned WIDE_SCENES = 1;
#else
constexpr unsigned SCENES = 20;
constexpr unsigned WIDE_SCENES = 7;
#endif

/// How many fish there are at certain times.
struct Counts {
    int atTheEnd; ///< of the voice
    int later;
};

/// \param view  what is seen of the world
int countFish(const Stage& stage, const media::Region& view)
{
    return static_cast<int>(
        std::count_if(stage.water->children.begin(), stage.water->children.end(), [&](Node* child) {
            const auto* boid = static_cast<Boid*>(child);
            return child->getType() == RTTI_PARTICLE && boid->type == BOID_FISH &&
                   !boid->outOfBound && boid->pos.x > view.left && boid->pos.x < view.right &&
                   boid->pos.y > view.bottom && boid->pos.y < view.top;
        }));
}

/// Plays the set of the working directory.
/// \param view   in which the fish are counted
/// \param later  seconds to go on after the end of the voice
Counts play(unsigned seed, const media::Region& view, int later)
{
    nullgl::reset();
    const HeldMessages messages;
    Stage stage(740, 740, seed, {VOICE * 44100LL, 44100});
    stage.draw();
    Counts counts{};
    const int steps = (VOICE + later) * Stage::STEPS_PER_SECOND;
    for (int step = 1; step <= steps; ++step) {
        stage.update();
        // Of a frame only the water changes the scene, by its bubbles, and the removal of those
        // that have left it.
        if (step % 20 == 0) {
            stage.draw();
        } else {
            stage.water->draw();
        }
        if (step == VOICE * Stage::STEPS_PER_SECOND) {
            counts.atTheEnd = countFish(stage, view);
        }
    }
    counts.later = countFish(stage, view);
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
        const Counts counts = play(seed, media::SQUARE_VIEW, LATER);
        atTheEnd.push_back(counts.atTheEnd);
        later.push_back(counts.later);
    }
    EXPECT_GE(medianOf(atTheEnd), 85);
    EXPECT_GE(medianOf(later), 80);
    RecordProperty("atTheEnd", medianOf(atTheEnd));
    RecordProperty("later", medianOf(later));
}

TEST(SchoolsTest, AreInTheBandOfAWideWindowAsTheVoiceEnds)
{
    // Later the bubbles carry them up: nothing holds fish in the middle of the world.
    media::Request request;
    request.wide = true;
    const TempDirectory folder;
    for (const char* part : {"data", "fonts", "sound"}) {
        std::filesystem::create_directory(part);
        for (const auto& file :
             std::filesystem::directory_iterator(std::filesystem::path(KELPIX_MEDIA_DIR) / part)) {
            std::filesystem::create_symlink(file.path(), part / file.path().filename());
        }
    }
    for (const media::File& file : media::makeDance(request)) {
        std::filesystem::remove(file.name);
        TempDirectory::write(file.name, file.bytes);
    }
    std::vector<int> atTheEnd;
    for (unsigned seed = 1; seed <= WIDE_SCENES; ++seed) {
        atTheEnd.push_back(play(seed, media::WIDE_VIEW, 0).atTheEnd);
    }
    EXPECT_GE(medianOf(atTheEnd), 68);
    RecordProperty("atTheEnd", medianOf(atTheEnd));
}

} // namespace
