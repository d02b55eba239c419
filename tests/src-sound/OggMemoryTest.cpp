// The decoder of sounds when memory runs out, wherever it does.

#include "OggSound.h"

#include "EarlyExit.h"
#include "FailingMemory.h"
#include "OggFiles.h"
#include "TempDirectory.h"

#include <cstdio>
#include <unistd.h>

namespace {

constexpr int SAMPLES = 200000;

/// Decodes a track in a process of its own, and ends it: with 7 when the track is whole, with 8
/// when the decoder met no failure.
void decodeWithout(long n, FailingMemory::Duration duration)
{
    OggSound sound;
    std::vector<char> out;
    int format = 0;
    unsigned freq = 0;
    bool failed = false;
    {
        const FailingMemory memory(n, duration);
        sound.loadOGG("tone.ogg", out, format, freq);
        failed = memory.hasFailed();
    }
    std::fputs("decoded", stderr);
    _exit(out.size() != 2u * SAMPLES ? 1 : failed ? 7 : 8);
}

TEST(OggMemoryDeathTest, ATrackIsDecodedWholeOrCountsAsDamagedWhereverMemoryEnds)
{
    TempDirectory directory;
    TempDirectory::write("tone.ogg", OggFiles::vorbis({.samples = SAMPLES, .loudness = 0}));
    for (const FailingMemory::Duration duration : {FailingMemory::ONCE, FailingMemory::FOR_EVER}) {
        bool complete = false;
        for (long n = 0; !complete; ++n) {
            ASSERT_LT(n, 100);
            static int status = 0; // a death test leaves nothing else behind
            EXPECT_EXIT(
                decodeWithout(n, duration),
                [](int ended) {
                    status = WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
                    return status == 255 || status == 7 || status == 8;
                },
                "^(Error decoding tone\\.ogg\\.\\.\\.\n|Cannot open tone\\.ogg for "
                "reading\\.\\.\\.\n|decoded)$")
                << "allocation " << n;
            complete = status == 8;
            ASSERT_FALSE(testing::Test::HasFailure());
        }
    }
}

} // namespace
