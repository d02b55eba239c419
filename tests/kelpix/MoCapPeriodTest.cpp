// How the clock arms itself again. This program has its own version of the toolkit's function.

#include "MoCap.h"

#include <FL/Fl.H>
#include <gtest/gtest.h>

namespace {

int calls = 0;
double period = 0;
Fl_Timeout_Handler handler = nullptr;
void* argument = nullptr;

} // namespace

void Fl::repeat_timeout(double seconds, Fl_Timeout_Handler callback, void* data)
{
    ++calls;
    period = seconds;
    handler = callback;
    argument = data;
}

namespace {

TEST(MoCapPeriodTest, TheClockArmsItselfAgainNinetyTimesASecond)
{
    MoCap mocap;
    for (void* arg : {static_cast<void*>(&mocap), static_cast<void*>(nullptr)}) {
        calls = 0;
        dataTimer(arg);
        EXPECT_EQ(calls, 1);
        EXPECT_EQ(period, 1.0 / 90.0);
        EXPECT_EQ(handler, &dataTimer);
        EXPECT_EQ(argument, arg);
    }
}

} // namespace
