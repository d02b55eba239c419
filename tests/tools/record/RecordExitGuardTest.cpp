#include "ExitGuard.h"
#include "HeldMessages.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

using record::ExitGuard;

void say(const char* text)
{
    std::fputs(text, stderr);
}

[[noreturn]] void endWithTwoGuards()
{
    const ExitGuard outer([] { say("outer;"); });
    const ExitGuard inner([] { say("inner;"); });
    std::exit(0);
}

[[noreturn]] void endAfterTheGuard()
{
    {
        const ExitGuard guard([] { say("guard;"); });
    }
    std::exit(7);
}

TEST(RecordExitGuardTest, TurnsAnyExitIntoAFailureAfterItsWork)
{
    EXPECT_EXIT(endWithTwoGuards(), testing::ExitedWithCode(1), "^inner;outer;$");
}

TEST(RecordExitGuardTest, LeavesAnExitAfterItsLifeAlone)
{
    EXPECT_EXIT(endAfterTheGuard(), testing::ExitedWithCode(7), "^$");
}

[[noreturn]] void printAndEnd(bool show)
{
    {
        const HeldMessages messages;
        std::puts("held");
        if (show) {
            messages.show();
        }
    }
    // What reaches standard output now is seen.
    dup2(STDERR_FILENO, STDOUT_FILENO);
    std::puts("seen");
    std::fflush(stdout);
    std::exit(0);
}

TEST(RecordHeldMessagesTest, AreNotSeen)
{
    EXPECT_EXIT(printAndEnd(false), testing::ExitedWithCode(0), "^seen\n$");
}

TEST(RecordHeldMessagesTest, CanBeShown)
{
    EXPECT_EXIT(printAndEnd(true), testing::ExitedWithCode(0), "^held\nseen\n$");
}

} // namespace
