#include "ExitGuard.h"
#include "HeldMessages.h"
#include "Interruption.h"

#include <csignal>
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

[[noreturn]] void endAfterTheInnerGuard()
{
    const ExitGuard outer([] { say("outer;"); });
    {
        const ExitGuard inner([] { say("inner;"); });
    }
    std::exit(0);
}

TEST(RecordExitGuardTest, TurnsAnyExitIntoAFailureAfterItsWork)
{
    EXPECT_EXIT(endWithTwoGuards(), testing::ExitedWithCode(1), "^inner;outer;$");
}

TEST(RecordExitGuardTest, LeavesAnExitAfterItsLifeAlone)
{
    EXPECT_EXIT(endAfterTheGuard(), testing::ExitedWithCode(7), "^$");
    EXPECT_EXIT(endAfterTheInnerGuard(), testing::ExitedWithCode(1), "^outer;$");
}

/// Ends with the number of the signal that was noted.
[[noreturn]] void hangUpThenInterrupt(void (*hangUp)(int))
{
    std::signal(SIGHUP, hangUp);
    std::signal(SIGINT, SIG_DFL);
    record::Interruption::watch();
    try {
        for (const int signal : {SIGHUP, SIGINT}) {
            std::raise(signal);
            record::Interruption::check();
        }
    } catch (const record::Interruption& interruption) {
        std::_Exit(interruption.signal);
    }
    std::_Exit(0);
}

TEST(RecordInterruptionTest, IsNotedUnlessItsSignalWasIgnoredAtTheStart)
{
    EXPECT_EXIT(hangUpThenInterrupt(SIG_DFL), testing::ExitedWithCode(SIGHUP), "^$");
    EXPECT_EXIT(hangUpThenInterrupt(SIG_IGN), testing::ExitedWithCode(SIGINT), "^$");
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
