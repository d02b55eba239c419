// The calls with which the running program starts and stops its random numbers, sounds, window and
// timers, in their order.

#include "OggFiles.h"
#include "Scene.h"
#include "TempDirectory.h"

#include <algorithm>
#include <ctime>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::ElementsAreArray;

/// Some of the media of the build, with tracks that can be told apart: the voice has one channel
/// and half a second at 8000 Hz, the bubbles have two channels and a quarter at 11025 Hz.
void makeMedia()
{
    for (const char* part : {"data", "fonts"}) {
        fs::create_directory_symlink(Scene::media() / part, part);
    }
    fs::create_directory("sound");
    TempDirectory::write("sound/magpie_vocal.ogg",
                         OggFiles::vorbis({.channels = 1, .rate = 8000, .samples = 4000}));
    TempDirectory::write("sound/bubbles_sound.ogg",
                         OggFiles::vorbis({.channels = 2, .rate = 11025, .samples = 2756}));
}

/// The program's calls, from its start to its end by the Q key after the first frame.
std::vector<std::string> traceOfARun()
{
    const TempDirectory folder;
    makeMedia();
    Scene scene(fs::current_path(), {{"LD_PRELOAD", KELPIX_CALL_TRACE}, {"CALL_TRACE", "trace"}});
    EXPECT_TRUE(scene.program.waitForOutput(Scene::firstFrameText() + Scene::firstBubblesText()));
    scene.press("q");
    EXPECT_EQ(scene.program.wait(), 0);
    std::vector<std::string> calls;
    std::ifstream file("trace");
    for (std::string line; std::getline(file, line);) {
        calls.push_back(line);
    }
    return calls;
}

class CallTraceTest : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        before = std::time(nullptr);
        calls = traceOfARun();
        after = std::time(nullptr);
    }

    /// The calls before the first, and those behind the last one of that text.
    static std::vector<std::string> until(const std::string& text)
    {
        return {calls.begin(), std::find(calls.begin(), calls.end(), text)};
    }
    static std::vector<std::string> behindLast(const std::string& text)
    {
        return {std::find(calls.rbegin(), calls.rend(), text).base(), calls.end()};
    }

    static inline std::vector<std::string> calls;
    static inline std::time_t before = 0;
    static inline std::time_t after = 0;
};

TEST_F(CallTraceTest, TheRandomNumbersStartWithTheTime)
{
    ASSERT_FALSE(calls.empty());
    ASSERT_EQ(calls[0].rfind("srand ", 0), 0U) << calls[0];
    const long seed = std::stol(calls[0].substr(6));
    EXPECT_GE(seed, before);
    EXPECT_LE(seed, after);
}

TEST_F(CallTraceTest, TheStartGoesFromTheSoundDeviceToTheSounds)
{
    std::vector<std::string> start = until("wait");
    ASSERT_FALSE(start.empty());
    start.erase(start.begin()); // the seed
    std::vector<std::string> expected = {
        "alutInit",
        "alGenBuffers 1: 1",
        "alGenSources 1: 1",
        "alListener3f position 0 0 0",
        "alSource3f 1 position 0 0 0",
        "alBufferData 1 mono 8000 8000", // the voice
        "alSourcei 1 buffer 1",
        "alGenBuffers 1: 2",
        "alGenSources 1: 2",
        "alListener3f position 0 0 0",
        "alSource3f 2 position 0 0 0",
        "alBufferData 2 stereo 11024 11025", // the bubbles
        "alSourcei 2 buffer 2",
        "alSourcef 1 gain 1.5",
        "alSourcef 2 gain 0.2",
    };
    // A fish takes two numbers for its velocity and two for its place, a sensor two.
    expected.insert(expected.end(), 100 * 4 + 3 * 2, "rand");
    expected.insert(expected.end(), {
                                        "add_timeout 0 callback1 data1", // the recording's clock
                                        "add_timeout 0 callback2 data2", // the frame rate's sampler
                                        "show data2",
                                        "add_timeout 0 callback3 data2", // redraws
                                        "add_timeout 0 callback4 data2", // updates
                                        "alSourcePlay 1",
                                        "alSourcei 2 looping 1",
                                        "alSourcePlay 2",
                                    });
    EXPECT_THAT(start, ElementsAreArray(expected));
}

TEST_F(CallTraceTest, TheTimersKeepTheirRatesAndTheClockAsksTheVoice)
{
    std::vector<std::string> armed;
    for (auto call = calls.begin(); call != calls.end(); ++call) {
        if (call->rfind("repeat_timeout", 0) == 0) {
            armed.push_back(*call);
            if (call->find("callback1") != std::string::npos) {
                ASSERT_GE(call - calls.begin(), 2);
                EXPECT_EQ(call[-2], "alGetSourcef 1 seconds");
                EXPECT_EQ(call[-1], "alGetSourcef 1 samples");
            }
        }
    }
    std::sort(armed.begin(), armed.end());
    armed.erase(std::unique(armed.begin(), armed.end()), armed.end());
    EXPECT_THAT(armed, ElementsAre("repeat_timeout 0.011111111111111112 callback1 data1",
                                   "repeat_timeout 0.025000000000000001 callback3 data2",
                                   "repeat_timeout 0.025000000000000001 callback4 data2",
                                   "repeat_timeout 1 callback2 data2"));
}

TEST_F(CallTraceTest, TheEndDeletesTheVoiceAndClosesTheSoundDevice)
{
    std::vector<std::string> end = behindLast("wait");
    // What the event loop still did when the window went.
    end.erase(std::remove_if(end.begin(), end.end(),
                             [](const std::string& call) {
                                 return call == "rand" || call.rfind("alGetSourcef", 0) == 0 ||
                                        call.rfind("repeat_timeout", 0) == 0;
                             }),
              end.end());
    EXPECT_THAT(end, ElementsAre("alDeleteBuffers 1: 1", "alDeleteSources 1: 1", "alutExit"));
}

} // namespace
