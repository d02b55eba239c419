#pragma once

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <unistd.h>

/// Included by tests of code that may end the process with status 0: when it does so outside of a
/// death test, the test program would otherwise count as passed.
class EarlyExit : public testing::Environment {
public:
    void SetUp() override
    {
        process = getpid();
        std::atexit(complain);
    }
    void TearDown() override { process = 0; }

private:
    static void complain()
    {
        // The child process of a death test may end in any way.
        if (process == getpid()) {
            std::fputs("The process ended in the middle of a test.\n", stderr);
            _exit(1);
        }
    }

    static inline pid_t process = 0;
};

inline testing::Environment* const earlyExit = testing::AddGlobalTestEnvironment(new EarlyExit);
