#include "Schedule.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using record::Schedule;
using record::SECOND;
using testing::ElementsAre;

std::vector<std::int64_t> stepsOf(const Schedule& schedule)
{
    std::vector<std::int64_t> steps;
    for (std::int64_t frame = 0; frame < schedule.frames(); ++frame) {
        steps.push_back(schedule.stepOf(frame));
    }
    return steps;
}

TEST(RecordScheduleTest, AtTheScenesRateEachFrameShowsAStepOfItsOwn)
{
    const Schedule schedule(0, SECOND / 8, 40);
    EXPECT_THAT(stepsOf(schedule), ElementsAre(0, 1, 2, 3, 4));
}

TEST(RecordScheduleTest, AFasterFilmRepeatsSteps)
{
    // Frames at 0, 1/60, 2/60 ... show the steps at 0, 0.67, 1.33 ... rounded down.
    EXPECT_THAT(stepsOf(Schedule(0, SECOND / 10, 60)), ElementsAre(0, 0, 1, 2, 2, 3));
}

TEST(RecordScheduleTest, ASlowerFilmLeavesStepsOut)
{
    EXPECT_THAT(stepsOf(Schedule(0, SECOND / 5, 25)), ElementsAre(0, 1, 3, 4, 6));
}

TEST(RecordScheduleTest, BeginsWithTheStepThatItsStartShows)
{
    EXPECT_THAT(stepsOf(Schedule(12525000, SECOND / 20, 40)), ElementsAre(501, 502));
    // Just before a step, the step before shows.
    EXPECT_THAT(stepsOf(Schedule(12524999, SECOND / 20, 40)), ElementsAre(500, 501));
}

TEST(RecordScheduleTest, LastsAtLeastAsLongAsAskedFor)
{
    EXPECT_EQ(Schedule(0, 1, 40).frames(), 1);
    EXPECT_EQ(Schedule(0, SECOND, 40).frames(), 40);
    EXPECT_EQ(Schedule(0, SECOND + 1, 40).frames(), 41);
    EXPECT_EQ(Schedule(0, record::LONGEST_TIME, 1000).frames(), 36000000);
}

TEST(RecordScheduleTest, CountsTheFramesOfEachStepAsTheyAreListed)
{
    for (const int fps : {1, 7, 25, 30, 40, 59, 60, 240}) {
        for (const record::Microseconds start : {0, 1, 24999, 333333, 1000000}) {
            const Schedule schedule(start, 2 * SECOND, fps);
            const std::vector<std::int64_t> steps = stepsOf(schedule);
            for (std::int64_t step = 0; step <= steps.back() + 2; ++step) {
                EXPECT_EQ(schedule.framesOf(step), std::count(steps.begin(), steps.end(), step))
                    << step << " at " << fps << " from " << start;
            }
        }
    }
}

TEST(RecordScheduleTest, CanEndBeforeAStep)
{
    Schedule schedule(0, SECOND, 60);
    schedule.endBefore(2);
    EXPECT_THAT(stepsOf(schedule), ElementsAre(0, 0, 1));
    Schedule late(SECOND, SECOND, 40);
    late.endBefore(40);
    EXPECT_EQ(late.frames(), 0);
    Schedule unchanged(0, SECOND, 40);
    unchanged.endBefore(1000);
    EXPECT_EQ(unchanged.frames(), 40);
}

TEST(RecordScheduleTest, AStepMeetsWhatHappensSinceTheOneBefore)
{
    EXPECT_EQ(record::stepAfter(0), 0);
    EXPECT_EQ(record::stepAfter(1), 1);
    EXPECT_EQ(record::stepAfter(25000), 1);
    EXPECT_EQ(record::stepAfter(25001), 2);
    EXPECT_EQ(record::stepShownAt(24999), 0);
    EXPECT_EQ(record::stepShownAt(25000), 1);
}

} // namespace
