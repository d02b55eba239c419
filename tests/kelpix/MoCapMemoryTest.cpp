// The reader of recordings when memory runs out, wherever it does.

#include "MoCap.h"

#include "EarlyExit.h"
#include "FailingMemory.h"
#include "TempDirectory.h"

#include <unistd.h>

namespace {

constexpr int RECORDS = 5;

/// Reads the recording in a process of its own, whose standard output is standard error, and ends
/// it: with 7 when the recording is whole, with 8 when the read met no failure.
void readWithout(long n, FailingMemory::Duration duration)
{
    dup2(STDERR_FILENO, STDOUT_FILENO);
    MoCap mocap;
    bool failed = false;
    {
        const FailingMemory memory(n, duration);
        mocap.read("index.txt");
        failed = memory.hasFailed();
    }
    std::fflush(stdout);
    _exit(mocap.numSteps != RECORDS ? 1 : failed ? 7 : 8);
}

TEST(MoCapMemoryDeathTest, ARecordingIsReadWholeOrEndsTheProcessWhereverMemoryEnds)
{
    TempDirectory directory;
    std::string data;
    for (int i = 0; i < 25 * RECORDS; ++i) {
        data += std::to_string(i) + "\n";
    }
    TempDirectory::write("data.txt", data);
    TempDirectory::write("index.txt", "MOCAP\n1 3\ndata.txt\n");
    for (const FailingMemory::Duration duration : {FailingMemory::ONCE, FailingMemory::FOR_EVER}) {
        bool complete = false;
        for (long n = 0; !complete; ++n) {
            ASSERT_LT(n, 200);
            static int status = 0; // a death test leaves nothing else behind
            EXPECT_EXIT(
                readWithout(n, duration),
                [&](int ended) {
                    status = WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
                    return status == 0 || status == 7 || status == 8;
                },
                "Couldn't read file|No MOCAP specified|size of sensorDataList = 5")
                << "allocation " << n;
            complete = status == 8;
            ASSERT_FALSE(testing::Test::HasFailure());
        }
    }
}

} // namespace
