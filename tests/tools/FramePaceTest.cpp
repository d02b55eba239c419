#include "FramePace.h"

#include <gtest/gtest.h>

TEST(FramePaceTest, FramesAreDueAtTheirRate)
{
    FramePace pace(4);
    EXPECT_EQ(pace.untilNext(100), 0);
    pace.begin();
    EXPECT_EQ(pace.untilNext(100.125), 0.125);
    EXPECT_EQ(pace.untilNext(100.25), 0);
    pace.begin();
    EXPECT_EQ(pace.untilNext(100.375), 0.125) << "a frame's own time does not count";
}

TEST(FramePaceTest, ALateFrameIsNotMadeUpFor)
{
    FramePace pace(4);
    pace.untilNext(100);
    pace.begin();
    EXPECT_EQ(pace.untilNext(107), 0);
    pace.begin();
    EXPECT_EQ(pace.untilNext(107), 0.25) << "no burst of frames";
}

TEST(FramePaceTest, AFrameThatIsALittleLateKeepsTheRhythm)
{
    FramePace pace(4);
    pace.untilNext(100);
    pace.begin();
    EXPECT_EQ(pace.untilNext(100.375), 0);
    pace.begin();
    EXPECT_EQ(pace.untilNext(100.375), 0.125);
}
