#include "Conductor.h"
#include "SimulatedCrew.h"

#include <gmock/gmock.h>

namespace {

using show::Seconds;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr Seconds FRAME = SimulatedCrew::FRAME;
constexpr Seconds PERIOD = 30;
// The frames of a showing until it is raised, and until those before it leave.
constexpr Seconds TO_RAISE = 3 * FRAME;
constexpr Seconds TO_PLAY = 2 * FRAME;
// A start takes two seconds; the next one is begun so much earlier than that says.
constexpr Seconds MARGIN = 0.3 * (2 + TO_RAISE);

class ShowConductorTest : public testing::Test {
protected:
    SimulatedCrew crew{{PERIOD, 5}};

    /// The pauses between the starts, in whole seconds.
    std::vector<long> pauses() const
    {
        std::vector<long> found;
        for (std::size_t i = 1; i < crew.starts.size(); ++i) {
            found.push_back(std::lround(crew.starts[i] - crew.starts[i - 1]));
        }
        return found;
    }
};

TEST_F(ShowConductorTest, OneShowingFollowsTheOtherWithoutAGap)
{
    crew.play(9.5 * PERIOD);

    EXPECT_EQ(crew.emptyFor, 0);
    EXPECT_EQ(crew.conductor.number(), 10);
    EXPECT_EQ(crew.most, 2U);
    EXPECT_THAT(crew.told, Each(HasSubstr("key")));
    EXPECT_EQ(crew.conductor.faults(), 0);
}

TEST_F(ShowConductorTest, TheNextOneIsInFrontWhenThePeriodIsOver)
{
    crew.play(2.8 * PERIOD);

    ASSERT_THAT(crew.raises, SizeIs(3));
    const Seconds firstFrame = 2; // of the first showing
    EXPECT_NEAR(crew.raises[1], firstFrame + PERIOD - MARGIN, 2 * FRAME);
    // The voice of the second one began with its own first frame.
    EXPECT_NEAR(crew.raises[2], crew.raises[1] - TO_RAISE + PERIOD - MARGIN, 2 * FRAME);
}

TEST_F(ShowConductorTest, ASlowStartIsMadeSoMuchEarlier)
{
    for (show::Id id = 1; id < 9; ++id) {
        crew.plans[id].opening = 8;
    }
    crew.play(PERIOD + 10);

    ASSERT_THAT(crew.starts, SizeIs(2));
    // At most two seconds earlier than it was the last time.
    EXPECT_NEAR(crew.starts[1], 8 + PERIOD - 8 - TO_RAISE - 2, 2 * FRAME);
}

TEST_F(ShowConductorTest, TheSlowestOfTheLastThreeStartsTellsHowEarlyTheNextOneIs)
{
    crew.plans[2].opening = 5;
    crew.play(6 * PERIOD);

    ASSERT_THAT(crew.starts, SizeIs(testing::Ge(6U)));
    // From a showing's first frame to the next one's start.
    const auto wait = [&](std::size_t index, Seconds opening) {
        return crew.starts.at(index) - (crew.starts.at(index - 1) + opening);
    };
    const Seconds slow = 5 + TO_RAISE;
    EXPECT_NEAR(wait(1, 2), PERIOD - 1.3 * (2 + TO_RAISE), 2 * FRAME);
    EXPECT_NEAR(wait(2, 5), PERIOD - 1.3 * slow, 2 * FRAME);
    EXPECT_NEAR(wait(3, 2), PERIOD - 1.3 * slow, 2 * FRAME);
    EXPECT_NEAR(wait(4, 2), PERIOD - 1.3 * slow, 2 * FRAME);
    EXPECT_NEAR(wait(5, 2), PERIOD - 1.3 * (2 + TO_RAISE), 2 * FRAME);
}

TEST_F(ShowConductorTest, APeriodShorterThanAStartIsAsLongAsThat)
{
    crew.conductor.setPeriod(1);
    crew.play(20);

    EXPECT_EQ(crew.emptyFor, 0);
    EXPECT_LE(crew.most, 2U);
    EXPECT_GT(crew.conductor.number(), 5);
}

TEST_F(ShowConductorTest, WithoutAPeriodAShowingGoesOn)
{
    crew.conductor.setPeriod({});
    crew.play(100 * PERIOD);

    EXPECT_THAT(crew.starts, SizeIs(1));
    EXPECT_THAT(crew.programs, SizeIs(1));
}

TEST_F(ShowConductorTest, AShowingIsRaisedOnceItHasDrawnAndTheOldOneEndsOnceItHasDrawnInFront)
{
    crew.conductor.setPeriod({});
    crew.play(10);
    EXPECT_THAT(crew.raises, ElementsAre(testing::DoubleNear(2 + TO_RAISE, FRAME / 2)));
    EXPECT_THAT(crew.dressed, ElementsAre(1));
    EXPECT_THAT(crew.settled, ElementsAre(1));
    EXPECT_EQ(crew.conductor.front(), 1);

    crew.conductor.mediaAtRest();
    crew.conductor.mediaChecked(true);
    const Seconds start = crew.now;
    while (crew.raises.size() < 2) {
        crew.play(FRAME);
        EXPECT_THAT(crew.told, IsEmpty());
    }
    EXPECT_NEAR(crew.now - FRAME, start + 2 + TO_RAISE, FRAME / 2);
    EXPECT_EQ(crew.conductor.front(), 2);
    EXPECT_THAT(crew.told, IsEmpty());
    crew.play(TO_PLAY);
    EXPECT_THAT(crew.told, ElementsAre("key 1"));
    EXPECT_THAT(crew.settled, ElementsAre(1));
    crew.play(2 * FRAME);
    EXPECT_THAT(crew.settled, ElementsAre(1, 2));
}

TEST_F(ShowConductorTest, ThatWhichDoesNotEndByItsKeyIsTerminatedAndThenKilled)
{
    crew.plans[1].endsByKey = false;
    crew.plans[2].endsByKey = false;
    crew.plans[2].endsByTerm = false;
    crew.play(3 * PERIOD - 5);

    EXPECT_THAT(crew.told, ElementsAre("key 1", "term 1", "key 2", "term 2", "kill 2"));
    EXPECT_EQ(crew.emptyFor, 0);
    EXPECT_THAT(crew.programs, SizeIs(1));
}

TEST_F(ShowConductorTest, WithoutTheKeyItIsTerminatedAtOnce)
{
    crew.hasQ = false;
    crew.play(2 * PERIOD);

    EXPECT_THAT(crew.told, ElementsAre("term 1"));
    EXPECT_EQ(crew.conductor.faults(), 0);
}

TEST_F(ShowConductorTest, ASilentShowingIsReplacedByTheClock)
{
    for (show::Id id = 1; id < 9; ++id) {
        crew.plans[id].isSilent = true;
    }
    crew.play(2.8 * PERIOD);

    // Two seconds until its window is there; one each until it is dressed, raised, and plays.
    ASSERT_THAT(crew.raises, SizeIs(3));
    EXPECT_NEAR(crew.raises[0], 2 + 1 + 1, 3 * FRAME);
    EXPECT_EQ(crew.emptyFor, 0);
    EXPECT_THAT(crew.told, ElementsAre("key 1", "key 2"));
    EXPECT_EQ(crew.conductor.faults(), 0);
}

TEST_F(ShowConductorTest, OnlyTheEndOfASilentShowingTellsThatSomethingIsWrong)
{
    crew.conductor.setPeriod({});
    crew.plans[1].isSilent = true;
    crew.plans[1].hangs = 20;
    crew.plans[1].ends = 900;
    crew.play(890);
    EXPECT_EQ(crew.conductor.faults(), 0);
    EXPECT_FALSE(crew.conductor.isFrontStill());
    crew.play(20);
    EXPECT_EQ(crew.conductor.faults(), 1);
    EXPECT_EQ(crew.top(), 2);
}

TEST_F(ShowConductorTest, ASilentShowingThatTellsAFrameIsNoLongerSilent)
{
    crew.conductor.setPeriod({});
    crew.plans[1].isSilent = true;
    crew.play(20);
    crew.conductor.frame(1, crew.now);
    crew.play(6);
    EXPECT_EQ(crew.conductor.lastFault(), "no frame for 5 s");
}

TEST_F(ShowConductorTest, AShowingWhoseWindowIsAwayDoesNotHang)
{
    crew.conductor.setPeriod({});
    crew.play(10);
    crew.setAway(1, true);
    EXPECT_TRUE(crew.conductor.isFrontStill());
    crew.play(100);
    EXPECT_EQ(crew.conductor.faults(), 0);
    crew.setAway(1, false);
    EXPECT_FALSE(crew.conductor.isFrontStill());
    crew.play(10);
    EXPECT_EQ(crew.conductor.faults(), 0);

    crew.programs[1].isAway = true; // it draws nothing, and nobody has taken it away
    crew.play(6);
    EXPECT_EQ(crew.conductor.lastFault(), "no frame for 5 s");
}

TEST_F(ShowConductorTest, AShowingIsFollowedByTheNextWhileItIsAway)
{
    crew.play(10);
    crew.setAway(1, true);
    crew.play(PERIOD);
    EXPECT_EQ(crew.top(), 2);
    EXPECT_THAT(crew.told, ElementsAre("key 1"));
}

TEST_F(ShowConductorTest, AShowingThatDiesIsReplacedAtOnce)
{
    crew.plans[1].ends = 20;
    crew.play(PERIOD);

    EXPECT_THAT(pauses(), ElementsAre(20));
    EXPECT_EQ(crew.conductor.faults(), 1);
    EXPECT_EQ(crew.conductor.lastFault(),
              "the program ended with status 1 18 s after its first frame");
    EXPECT_NEAR(crew.emptyFor, 2 + TO_RAISE, 2 * FRAME); // what a start takes
}

TEST_F(ShowConductorTest, OneThatDiesWhileTheNextOneOpensIsReplacedByThat)
{
    crew.plans[1].ends = 31;
    crew.play(PERIOD + 10);

    EXPECT_THAT(crew.starts, SizeIs(2));
    EXPECT_EQ(crew.top(), 2);
}

TEST_F(ShowConductorTest, AVisitorsKeyIsNoFault)
{
    crew.plans[1].ends = 5;
    crew.plans[1].end = {false, "with status 0"};
    crew.play(10);

    EXPECT_THAT(pauses(), ElementsAre(5));
    EXPECT_EQ(crew.conductor.faults(), 0);
}

TEST_F(ShowConductorTest, TheLastFrameOfAHangingShowingStaysUntilTheNextOneIsInFront)
{
    crew.plans[1].hangs = 20;
    crew.plans[1].endsByTerm = false; // it is stopped
    crew.play(PERIOD + 10);

    EXPECT_EQ(crew.emptyFor, 0);
    EXPECT_NEAR(crew.starts.at(1), 20 + 5, 2 * FRAME);
    EXPECT_NEAR(crew.frozenFor, 5 + 2 + TO_RAISE, 3 * FRAME);
    EXPECT_THAT(crew.told, ElementsAre("term 1", "kill 1"));
    EXPECT_EQ(crew.conductor.lastFault(), "no frame for 5 s");
}

TEST_F(ShowConductorTest, TheFrontIsStillFromThatFaultUntilTheNextOneIsInFront)
{
    crew.plans[1].hangs = 20;
    std::vector<Seconds> hanging;
    for (; crew.now < PERIOD + 10; crew.play(FRAME)) {
        if (crew.conductor.isFrontStill()) {
            hanging.push_back(crew.now);
        }
    }
    ASSERT_THAT(hanging, Not(IsEmpty()));
    EXPECT_NEAR(hanging.front(), 20 + 5, 2 * FRAME);
    EXPECT_NEAR(hanging.back(), 20 + 5 + 2 + TO_RAISE, 3 * FRAME);
}

TEST_F(ShowConductorTest, WhatCannotBeStartedIsTriedAgain)
{
    crew.refusals = 2;
    crew.play(10);

    EXPECT_NEAR(crew.starts.at(0), 1 + 2, 2 * FRAME);
    EXPECT_EQ(crew.conductor.faults(), 2);
    EXPECT_EQ(crew.conductor.lastFault(), "the program could not be started");
    EXPECT_EQ(crew.top(), 1);

    crew.refusals = 1;
    crew.play(2 * PERIOD);
    EXPECT_EQ(crew.conductor.faults(), 3);
    EXPECT_GE(crew.top(), 2);
    EXPECT_EQ(crew.emptyFor, 0);
}

TEST_F(ShowConductorTest, OneThatHangsBeforeItIsInFrontIsGivenUp)
{
    crew.plans[2].hangs = 2 + FRAME;
    crew.play(2 * PERIOD);

    EXPECT_EQ(crew.emptyFor, 0);
    EXPECT_THAT(crew.told, ElementsAre("term 2", "key 1"));
    EXPECT_EQ(crew.top(), 3);
}

TEST_F(ShowConductorTest, OneThatNeverDrawsIsGivenUpAfterTwelveTimesThePatience)
{
    crew.plans[1].opening = 1e9;
    crew.play(70);

    EXPECT_THAT(pauses(), ElementsAre(61));
    EXPECT_EQ(crew.conductor.lastFault(), "no first frame within 60 s");
    EXPECT_EQ(crew.conductor.number(), 1);
}

TEST_F(ShowConductorTest, QuickEndsMakeThePausesLonger)
{
    for (show::Id id = 1; id < 99; ++id) {
        crew.plans[id].ends = 1;
    }
    crew.play(400);

    // A second until it ends, and the pause.
    EXPECT_THAT(pauses(), ElementsAre(2, 3, 5, 9, 17, 33, 61, 61, 61, 61, 61));
    EXPECT_THAT(crew.said, Contains("7 times in a row: the next start in 60 s"));
    EXPECT_EQ(crew.conductor.number(), 0);
    EXPECT_EQ(crew.conductor.front(), std::nullopt);
}

TEST_F(ShowConductorTest, AShowingThatLastsEndsTheRowOfQuickEnds)
{
    crew.plans[1].ends = 1;
    crew.plans[2].ends = 1;
    crew.plans[3].ends = 20;
    crew.plans[4].ends = 1;
    crew.play(50);

    EXPECT_THAT(pauses(), ElementsAre(2, 3, 20, 2));
}

TEST_F(ShowConductorTest, TheOldOneGoesOnWhileNothingNewOpens)
{
    for (show::Id id = 2; id < 5; ++id) {
        crew.plans[id].ends = 1;
    }
    crew.play(2 * PERIOD);

    EXPECT_EQ(crew.emptyFor, 0);
    EXPECT_EQ(crew.conductor.number(), 2);
    EXPECT_EQ(crew.conductor.faults(), 3);
    EXPECT_EQ(crew.top(), 5);
}

TEST_F(ShowConductorTest, GoodNewMediaBeginAnew)
{
    crew.play(10);
    crew.conductor.mediaTouched(crew.now);
    crew.play(1);
    EXPECT_EQ(crew.checks, 0);
    crew.conductor.mediaAtRest();
    EXPECT_EQ(crew.checks, 1);
    crew.play(1);
    EXPECT_THAT(crew.starts, SizeIs(1));
    crew.conductor.mediaChecked(true);
    crew.play(5);

    EXPECT_THAT(pauses(), ElementsAre(12));
    EXPECT_EQ(crew.top(), 2);
    EXPECT_EQ(crew.emptyFor, 0);
    crew.play(PERIOD - 10);
    EXPECT_THAT(crew.starts, SizeIs(2)); // once, and then as usual
}

TEST_F(ShowConductorTest, TheOldOneGoesOnWhileTheMediaAreRefused)
{
    crew.play(10);
    crew.conductor.mediaTouched(crew.now);
    crew.conductor.mediaAtRest();
    crew.conductor.mediaChecked(false);
    crew.play(5 * PERIOD);
    EXPECT_THAT(crew.starts, SizeIs(1));

    crew.conductor.mediaTouched(crew.now);
    crew.conductor.mediaAtRest();
    crew.conductor.mediaChecked(true);
    crew.play(5);
    EXPECT_EQ(crew.top(), 2);
    EXPECT_EQ(crew.emptyFor, 0);
}

TEST_F(ShowConductorTest, RefusedMediaAreTriedWhenNothingElseIsThere)
{
    crew.plans[1].ends = 20;
    crew.play(10);
    crew.conductor.mediaTouched(crew.now);
    crew.conductor.mediaAtRest();
    crew.conductor.mediaChecked(false);
    crew.play(20);

    EXPECT_EQ(crew.top(), 2);
}

TEST_F(ShowConductorTest, AnAnswerAboutMediaThatWereTouchedSinceCountsForNothing)
{
    crew.play(10);
    crew.conductor.mediaAtRest();
    crew.conductor.mediaTouched(crew.now);
    crew.conductor.mediaChecked(true);
    crew.play(10);
    EXPECT_THAT(crew.starts, SizeIs(1));
}

TEST_F(ShowConductorTest, WhatReadsMediaThatAreBeingChangedIsGivenUp)
{
    crew.play(PERIOD + 1); // the next one opens
    ASSERT_THAT(crew.starts, SizeIs(2));
    crew.conductor.mediaTouched(crew.now);
    crew.play(PERIOD);
    EXPECT_THAT(crew.told, ElementsAre("term 2"));
    EXPECT_EQ(crew.conductor.faults(), 0);
    crew.conductor.mediaAtRest();
    crew.conductor.mediaChecked(true);
    crew.play(5);

    EXPECT_EQ(crew.top(), 3);
    EXPECT_EQ(crew.emptyFor, 0);
}

TEST_F(ShowConductorTest, AStopEndsAllAndStartsNothing)
{
    crew.plans[1].endsByTerm = false;
    crew.play(PERIOD + 1);
    ASSERT_THAT(crew.programs, SizeIs(2));
    EXPECT_FALSE(crew.conductor.isOver());
    crew.conductor.stop(crew.now);
    crew.play(1);
    EXPECT_FALSE(crew.conductor.isOver());
    crew.play(10);

    EXPECT_THAT(crew.told, ElementsAre("term 1", "term 2", "kill 1"));
    EXPECT_TRUE(crew.conductor.isOver());
    EXPECT_THAT(crew.starts, SizeIs(2));
}

TEST_F(ShowConductorTest, ASecondStopGivesNoMoreTime)
{
    crew.plans[1].endsByTerm = false;
    crew.play(10);
    crew.conductor.stop(crew.now);
    crew.play(2);
    crew.conductor.stop(crew.now);
    crew.play(1.5);

    EXPECT_THAT(crew.told, ElementsAre("term 1", "kill 1"));
    EXPECT_TRUE(crew.conductor.isOver());
}

TEST_F(ShowConductorTest, EachShowingThatPlaysIsALineOfTheLog)
{
    crew.play(2 * PERIOD);
    EXPECT_THAT(crew.said, ElementsAre("showing 1 plays", "showing 2 plays"));
}

} // namespace
