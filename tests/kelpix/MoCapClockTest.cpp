#include "MoCap.h"

#include "OggFiles.h"
#include "TempDirectory.h"

#include <FL/Fl.H>
#include <memory>

namespace {

/// The clock under the toolkit's own timers, with a sound on a device. No window is opened.
class MoCapClockTest : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        int argc = 1;
        char name[] = "program";
        char* argv[] = {name, nullptr};
        OggSound::initAL(&argc, argv);
    }
    static void TearDownTestSuite() { OggSound::exitAL(); }

    void SetUp() override
    {
        TempDirectory::write("voice.ogg", OggFiles::vorbis({.rate = 8000, .samples = 20000}));
        voice.load("voice.ogg");
        mocap.sound = &voice;
        mocap.numSteps = 1000;
    }
    void TearDown() override
    {
        Fl::remove_timeout(dataTimer, &mocap);
        Fl::remove_timeout(dataTimer, nullptr);
    }

    /// Makes the voice stand still at one of its 20000 samples.
    void holdVoiceAt(float sample)
    {
        voice.play();
        alSourcePause(voice.sourceID);
        alSourcef(voice.sourceID, AL_SAMPLE_OFFSET, sample);
    }

    TempDirectory directory;
    OggSound voice;
    MoCap mocap;
};

/// Runs the timers until the clock has ticked.
void waitForTick(MoCap& mocap)
{
    constexpr int NOT_TICKED = -7;
    mocap.step = NOT_TICKED;
    for (int i = 0; i < 60000 && mocap.step == NOT_TICKED; ++i) {
        Fl::wait(0.001);
    }
    ASSERT_NE(mocap.step, NOT_TICKED);
}

TEST_F(MoCapClockTest, TheStepFollowsTheSoundTickAfterTick)
{
    Fl::add_timeout(0, dataTimer, &mocap);
    waitForTick(mocap);
    EXPECT_EQ(mocap.step, 0) << "before the voice plays";
    holdVoiceAt(10000);
    waitForTick(mocap);
    EXPECT_EQ(mocap.step, 500);
    holdVoiceAt(10002);
    waitForTick(mocap);
    EXPECT_EQ(mocap.step, 501) << "0.5001 of the voice, rounded up";
    holdVoiceAt(1);
    waitForTick(mocap);
    EXPECT_EQ(mocap.step, 1);
}

TEST_F(MoCapClockTest, TheStepIsZeroAgainAfterTheSoundEnded)
{
    holdVoiceAt(10000);
    Fl::add_timeout(0, dataTimer, &mocap);
    waitForTick(mocap);
    EXPECT_EQ(mocap.step, 500);
    voice.stop();
    waitForTick(mocap);
    EXPECT_EQ(mocap.step, 0);
}

TEST_F(MoCapClockTest, TheStepIsZeroWhenTheDeviceIsLostWhileItPlays)
{
    holdVoiceAt(10000);
    Fl::add_timeout(0, dataTimer, &mocap);
    waitForTick(mocap);
    EXPECT_EQ(mocap.step, 500);
    OggSound::exitAL();
    waitForTick(mocap);
    EXPECT_EQ(mocap.step, 0);
    EXPECT_EQ(voice.getState(), 0);
    voice.stop();
    SetUpTestSuite();
}

TEST_F(MoCapClockTest, WithoutASoundTheStepIsZero)
{
    mocap.sound = nullptr;
    Fl::add_timeout(0, dataTimer, &mocap);
    waitForTick(mocap);
    EXPECT_EQ(mocap.step, 0);
}

TEST_F(MoCapClockTest, TheTimerRunsWithoutARecordingToo)
{
    dataTimer(nullptr);
    EXPECT_TRUE(Fl::has_timeout(dataTimer, nullptr));
}

TEST_F(MoCapClockTest, ADestroyedRecordingTakesItsTimerWithIt)
{
    auto other = std::make_unique<MoCap>();
    MoCap* const address = other.get();
    Fl::add_timeout(0, dataTimer, address);
    waitForTick(*other);
    EXPECT_TRUE(Fl::has_timeout(dataTimer, address));
    other.reset();
    EXPECT_FALSE(Fl::has_timeout(dataTimer, address));
}

} // namespace
