#include "OggSound.h"

#include "EarlyExit.h"
#include "OggFiles.h"
#include "TempDirectory.h"

#include <AL/alc.h>
#include <chrono>
#include <thread>
#include <type_traits>

namespace {

static_assert(!std::is_polymorphic_v<OggSound>);
static_assert(std::is_same_v<decltype(OggSound::state), ALint>);
static_assert(std::is_same_v<decltype(OggSound::numSamples), ogg_int64_t>);
static_assert(std::is_same_v<decltype(OggSound::bufferData), std::vector<char>>);

using OggFiles::Tone;
using OggFiles::vorbis;

/// A test with a sound device. The null driver's clock runs in real time, so no test relies on how
/// far it got by itself: a paused source stands still, and its position can be set.
class OggSoundTest : public testing::Test {
protected:
    TempDirectory directory;

    static void SetUpTestSuite()
    {
        int argc = 1;
        char name[] = "program";
        char* argv[] = {name, nullptr};
        OggSound::initAL(&argc, argv);
        ASSERT_EQ(alGetError(), AL_NO_ERROR);
    }
    static void TearDownTestSuite() { OggSound::exitAL(); }

    void SetUp() override { alGetError(); }

    static void load(OggSound& sound, const Tone& tone)
    {
        TempDirectory::write("tone.ogg", vorbis(tone));
        sound.load("tone.ogg");
        ASSERT_EQ(alGetError(), AL_NO_ERROR);
    }

    /// Asks the condition again and again, for at most a minute.
    template<typename Condition>
    static bool eventually(Condition condition)
    {
        for (int i = 0; i < 30000; ++i) {
            if (condition()) {
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        return false;
    }

    /// Makes a sound stand still at one of its samples. It loops until it is paused, so that it has
    /// not ended before.
    static void holdAt(OggSound& sound, float sample)
    {
        sound.loopyPlay();
        alSourcePause(sound.sourceID);
        alSourcef(sound.sourceID, AL_SAMPLE_OFFSET, sample);
    }

    static ALint bufferValue(const OggSound& sound, ALenum what)
    {
        ALint value = -1;
        alGetBufferi(sound.bufferID, what, &value);
        return value;
    }
};

TEST_F(OggSoundTest, ANewSoundIsAllZero)
{
    const OggSound sound;
    EXPECT_EQ(sound.state, 0);
    EXPECT_EQ(sound.bufferID, 0u);
    EXPECT_EQ(sound.sourceID, 0u);
    EXPECT_EQ(sound.format, 0);
    EXPECT_EQ(sound.freq, 0);
    EXPECT_TRUE(sound.bufferData.empty());
    EXPECT_EQ(sound.numSamples, 0);
    EXPECT_EQ(sound.sampleOffset, 0);
}

TEST_F(OggSoundTest, LoadFillsABufferAndBindsItToASource)
{
    OggSound sound;
    load(sound, {.channels = 2, .rate = 8000, .samples = 8000});
    EXPECT_EQ(sound.format, AL_FORMAT_STEREO16);
    EXPECT_EQ(sound.freq, 8000);
    EXPECT_EQ(sound.bufferData.size(), 32000u);
    EXPECT_EQ(bufferValue(sound, AL_SIZE), 32000);
    EXPECT_EQ(bufferValue(sound, AL_CHANNELS), 2);
    EXPECT_EQ(bufferValue(sound, AL_BITS), 16);
    EXPECT_EQ(bufferValue(sound, AL_FREQUENCY), 8000);
    ALint bound = -1;
    alGetSourcei(sound.sourceID, AL_BUFFER, &bound);
    EXPECT_EQ(static_cast<ALuint>(bound), sound.bufferID);
    EXPECT_EQ(sound.getState(), AL_INITIAL);
    EXPECT_EQ(sound.getPlaybackOffset(), 0);
}

TEST_F(OggSoundTest, SurroundSoundPlaysAsStereo)
{
    OggSound sound;
    load(sound, {.channels = 3, .samples = 1001});
    EXPECT_EQ(bufferValue(sound, AL_SIZE), 6004);
    EXPECT_EQ(bufferValue(sound, AL_CHANNELS), 2);
    sound.play();
    EXPECT_EQ(alGetError(), AL_NO_ERROR);
}

TEST_F(OggSoundTest, AnEmptyTrackIsHarmless)
{
    OggSound sound;
    load(sound, {.samples = 0});
    sound.play();
    EXPECT_EQ(sound.getPlaybackOffset(), 0);
    sound.stop();
    EXPECT_EQ(sound.getPlaybackOffset(), 0);
}

TEST_F(OggSoundTest, TheFractionIsThePositionOverTheTrack)
{
    OggSound sound;
    load(sound, {.rate = 8000, .samples = 80000});
    holdAt(sound, 40000);
    EXPECT_EQ(sound.getPlaybackOffset(), 0.5f);
    EXPECT_EQ(sound.sampleOffset, 40000);
    alSourcef(sound.sourceID, AL_SAMPLE_OFFSET, 79999);
    EXPECT_EQ(sound.getPlaybackOffset(), 79999.0f / 80000.0f);
}

TEST_F(OggSoundTest, TheFractionFollowsTheClockHalfwayThroughTheTrack)
{
    OggSound sound;
    load(sound, {.rate = 8000, .samples = 8000 * 120});
    sound.play();
    EXPECT_EQ(sound.getState(), AL_PLAYING);
    alSourcef(sound.sourceID, AL_SAMPLE_OFFSET, 8000 * 60);
    const float half = sound.getPlaybackOffset();
    EXPECT_GE(half, 0.5f);
    ASSERT_TRUE(eventually([&] { return sound.getPlaybackOffset() > half; }));
    ALfloat before = 0;
    alGetSourcef(sound.sourceID, AL_SEC_OFFSET, &before);
    const float fraction = sound.getPlaybackOffset();
    ALfloat after = 0;
    alGetSourcef(sound.sourceID, AL_SEC_OFFSET, &after);
    EXPECT_GE(fraction, before / 120 - 1e-5f);
    EXPECT_LE(fraction, after / 120 + 1e-5f);
}

TEST_F(OggSoundTest, ATrackPlaysOnceAndStops)
{
    OggSound sound;
    load(sound, {.samples = 4410});
    sound.play();
    ASSERT_TRUE(eventually([&] { return sound.getState() == AL_STOPPED; }));
    EXPECT_EQ(sound.state, AL_STOPPED);
    EXPECT_EQ(sound.getPlaybackOffset(), 0);
}

TEST_F(OggSoundTest, ALoopStartsOverAndPlaysOn)
{
    OggSound sound;
    load(sound, {.samples = 22050});
    sound.loopyPlay();
    float last = 0;
    const auto hasStartedOver = [&] {
        const float fraction = sound.getPlaybackOffset();
        const bool earlier = fraction < last;
        last = fraction;
        return earlier;
    };
    EXPECT_TRUE(eventually(hasStartedOver));
    EXPECT_TRUE(eventually(hasStartedOver));
    EXPECT_EQ(sound.getState(), AL_PLAYING);
    sound.stop();
    EXPECT_EQ(sound.getState(), AL_STOPPED);
}

TEST_F(OggSoundTest, StopEndsATrack)
{
    OggSound sound;
    load(sound, {.samples = 441000});
    sound.play();
    sound.stop();
    EXPECT_EQ(sound.getState(), AL_STOPPED);
    EXPECT_EQ(sound.getPlaybackOffset(), 0);
}

TEST_F(OggSoundTest, GainsAboveOneArePassedOn)
{
    OggSound sound;
    load(sound, {.samples = 441});
    for (const float gain : {1.5f, 0.2f}) {
        sound.setVolume(gain);
        ALfloat actual = 0;
        alGetSourcef(sound.sourceID, AL_GAIN, &actual);
        EXPECT_EQ(actual, gain);
    }
}

TEST_F(OggSoundTest, SeveralSoundsPlayAtATime)
{
    OggSound voice;
    OggSound bubbles;
    load(voice, {.samples = 441000});
    load(bubbles, {.samples = 441000});
    voice.play();
    bubbles.loopyPlay();
    EXPECT_EQ(voice.getState(), AL_PLAYING);
    EXPECT_EQ(bubbles.getState(), AL_PLAYING);
    voice.stop();
    EXPECT_EQ(bubbles.getState(), AL_PLAYING);
}

TEST_F(OggSoundTest, LoadingAgainReplacesTheSoundAndLeavesNothingBehind)
{
    OggSound sound;
    load(sound, {.samples = 44100});
    sound.play();
    const ALuint buffer = sound.bufferID;
    const ALuint source = sound.sourceID;
    load(sound, {.channels = 2, .samples = 1000});
    EXPECT_EQ(sound.bufferData.size(), 4000u);
    EXPECT_EQ(sound.numSamples, 1000);
    EXPECT_EQ(sound.format, AL_FORMAT_STEREO16);
    EXPECT_EQ(sound.getState(), AL_INITIAL);
    EXPECT_TRUE(sound.bufferID == buffer || alIsBuffer(buffer) == AL_FALSE);
    EXPECT_TRUE(sound.sourceID == source || alIsSource(source) == AL_FALSE);
}

TEST_F(OggSoundTest, CleanUpLeavesAnEmptySound)
{
    OggSound sound;
    load(sound, {.samples = 1000});
    const ALuint source = sound.sourceID;
    holdAt(sound, 500);
    EXPECT_EQ(sound.getState(), AL_PAUSED);
    EXPECT_EQ(sound.getPlaybackOffset(), 0.5f);
    sound.cleanUp();
    EXPECT_EQ(alIsSource(source), AL_FALSE);
    EXPECT_EQ(sound.bufferData.size(), 2000u);
    alGetError();
    sound.cleanUp();
    EXPECT_EQ(alGetError(), AL_NO_ERROR);
    EXPECT_EQ(sound.getState(), 0);
    EXPECT_EQ(sound.getPlaybackOffset(), 0);
}

TEST_F(OggSoundTest, TheDeviceIsClosedAfterSoundsWereDestroyedAndForgotten)
{
    auto* const voice = new OggSound;
    OggSound bubbles;
    load(*voice, {.samples = 441000});
    load(bubbles, {.samples = 441000});
    voice->play();
    bubbles.loopyPlay();
    delete voice;
    OggSound::exitAL();
    EXPECT_EQ(alcGetCurrentContext(), nullptr);
    EXPECT_EQ(bubbles.getPlaybackOffset(), 0);
    SetUpTestSuite();
}

TEST_F(OggSoundTest, CleaningUpASoundThatWasNeverLoadedIsNoError)
{
    {
        OggSound sound;
        sound.cleanUp();
    }
    EXPECT_EQ(alGetError(), AL_NO_ERROR);
}

} // namespace
