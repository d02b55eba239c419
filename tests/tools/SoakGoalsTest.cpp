#include "Goals.h"

#include <gmock/gmock.h>

namespace {

using soak::Goal;
using soak::Sample;
using testing::HasSubstr;

constexpr std::size_t KIB = 1024;

/// A run of \p hours hours that meets all goals, with a sample an hour.
std::vector<Sample> steadyRun(int hours)
{
    std::vector<Sample> samples;
    for (int hour = 0; hour <= hours; ++hour) {
        Sample sample;
        sample.hours = hour;
        sample.fish = 100;
        sample.lists = 900 + static_cast<std::size_t>(hour % 3);
        sample.listsOfNodes = sample.lists;
        sample.textures = 131;
        sample.heap = 10000 * KIB;
        samples.push_back(sample);
    }
    return samples;
}

/// What is said of the heap, the display lists and the textures.
class SoakGoalsTest : public testing::Test {
protected:
    static Goal heap(const std::vector<Sample>& samples) { return soak::judge(samples).at(0); }
    static Goal lists(const std::vector<Sample>& samples) { return soak::judge(samples).at(1); }
    static Goal textures(const std::vector<Sample>& samples) { return soak::judge(samples).at(2); }
};

TEST_F(SoakGoalsTest, ASteadyRunMeetsAll)
{
    const std::vector<Goal> goals = soak::judge(steadyRun(72));
    ASSERT_EQ(goals.size(), 3u);
    EXPECT_TRUE(goals[0].met);
    EXPECT_EQ(goals[0].text, "heap growth from hour 2.00 to hour 72.00: 0 KiB, at most 512");
    EXPECT_TRUE(goals[1].met);
    EXPECT_EQ(goals[1].text, "display lists: those of the living nodes, at the end 900");
    EXPECT_TRUE(goals[2].met);
    EXPECT_EQ(goals[2].text, "textures: 131 at hour 2.00, 131 at hour 72.00");
}

TEST_F(SoakGoalsTest, TheHeapMayGrowBy512KiB)
{
    std::vector<Sample> samples = steadyRun(72);
    samples.back().heap += 512 * KIB;
    EXPECT_TRUE(heap(samples).met);
    samples.back().heap += 1;
    EXPECT_FALSE(heap(samples).met);
    EXPECT_THAT(heap(samples).text, HasSubstr(": 513 KiB"));
}

TEST_F(SoakGoalsTest, AHeapThatShrinksIsFine)
{
    std::vector<Sample> samples = steadyRun(72);
    samples.back().heap -= 2000 * KIB;
    EXPECT_TRUE(heap(samples).met);
    EXPECT_THAT(heap(samples).text, HasSubstr(": -2000 KiB"));
}

TEST_F(SoakGoalsTest, ALeakOfTwoBytesAFrameIsFound)
{
    std::vector<Sample> samples = steadyRun(72);
    for (Sample& sample : samples) {
        sample.heap += static_cast<std::size_t>(sample.hours) * 3600 * 40 * 2;
    }
    EXPECT_FALSE(heap(samples).met);
}

TEST_F(SoakGoalsTest, TheFirstTwoHoursMayGrow)
{
    std::vector<Sample> samples = steadyRun(72);
    samples[0].heap -= 5000 * KIB;
    samples[1].heap -= 1000 * KIB;
    EXPECT_TRUE(heap(samples).met);
}

TEST_F(SoakGoalsTest, AShortRunIsJudgedFromItsMiddle)
{
    std::vector<Sample> samples = steadyRun(3);
    samples[0].heap -= 1000 * KIB;
    samples[1].heap -= 1000 * KIB;
    EXPECT_TRUE(heap(samples).met); // from hour 2 on, the first after hour 1.5
    samples[2].heap -= 1000 * KIB;
    EXPECT_FALSE(heap(samples).met);
}

TEST_F(SoakGoalsTest, ASpanOfNothingMeetsNothing)
{
    std::vector<Sample> samples = steadyRun(1);
    samples[0].hours = 0.49; // before the middle, so that the end alone is left
    for (const std::vector<Sample>& run : {steadyRun(0), samples}) {
        ASSERT_EQ(soak::judge(run).size(), 1u);
        EXPECT_FALSE(soak::judge(run)[0].met);
    }
    samples[0].hours = 0.5;
    EXPECT_TRUE(heap(samples).met);
}

TEST_F(SoakGoalsTest, GrowthCountsFromTheSecondHourOrTheMiddle)
{
    EXPECT_EQ(soak::settledAt(72), 2);
    EXPECT_EQ(soak::settledAt(4), 2);
    EXPECT_EQ(soak::settledAt(1), 0.5);
    EXPECT_EQ(soak::settledAt(0), 0);
}

TEST_F(SoakGoalsTest, OneListTooManyAtAnyTimeIsFound)
{
    std::vector<Sample> samples = steadyRun(72);
    samples[1].lists += 1;
    EXPECT_FALSE(lists(samples).met);
    EXPECT_EQ(lists(samples).text,
              "display lists: 902 at hour 1.00, where the living nodes account for 901");
    samples[1].lists -= 2;
    EXPECT_FALSE(lists(samples).met);
    EXPECT_TRUE(heap(samples).met);
    EXPECT_TRUE(textures(samples).met);
}

TEST_F(SoakGoalsTest, OneTextureTooManyIsFound)
{
    std::vector<Sample> samples = steadyRun(72);
    samples.back().textures = 132;
    EXPECT_FALSE(textures(samples).met);
    EXPECT_EQ(textures(samples).text, "textures: 131 at hour 2.00, 132 at hour 72.00");
}

TEST_F(SoakGoalsTest, ARunWithoutSamplesMeetsNothing)
{
    ASSERT_EQ(soak::judge({}).size(), 1u);
    EXPECT_FALSE(soak::judge({})[0].met);
}

} // namespace
