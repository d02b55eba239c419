#include "MoCap.h"

#include "ArmedTimers.h"
#include "OggFiles.h"
#include "Sensor.h"
#include "SensorRep.h"
#include "TempDirectory.h"

#include <AL/alc.h>
#include <AL/alext.h>
#include <FL/Fl.H>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <sys/resource.h>

namespace {

/// The clock under FLTK's own timers, with a sound on a device. No window is opened.
class MoCapClockTest : public testing::Test {
protected:
    // A device that can be lost: it writes what is played to a file in the working directory.
    static void SetUpTestSuite()
    {
        const TempDirectory configuration;
        TempDirectory::write("alsoft.conf", "[wave]\nfile=device.wav\n");
        setenv("ALSOFT_CONF", "alsoft.conf", 1);
        setenv("ALSOFT_DRIVERS", "wave", 1);
        openDevice();
    }
    static void TearDownTestSuite() { OggSound::exitAL(); }

    static void openDevice()
    {
        int argc = 1;
        char name[] = "program";
        char* argv[] = {name, nullptr};
        OggSound::initAL(&argc, argv);
        ASSERT_TRUE(isConnected());
    }

    static bool isConnected()
    {
        ALCint connected = 0;
        ALCcontext* const context = alcGetCurrentContext();
        alcGetIntegerv(alcGetContextsDevice(context), ALC_CONNECTED, 1, &connected);
        return context != nullptr && connected != 0;
    }

    /// Makes the device fail, as if it was unplugged: its file cannot grow any more. OpenAL's
    /// thread first notes the failure, then stops the sounds: this waits for both.
    void loseDevice()
    {
        rlimit before{};
        ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
        const auto handler = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit none{0, before.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &none), 0);
        const auto isLost = [&] { return !isConnected() && voice.getState() != AL_PLAYING; };
        for (int i = 0; i < 60000 && !isLost(); ++i) {
            Fl::wait(0.001);
        }
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
        ASSERT_FALSE(isConnected());
    }

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

    /// Makes the voice stand still at one of its 20000 samples. They last 2.5 seconds: it loops
    /// until it is paused, so that it has not ended before however long that takes.
    void holdVoiceAt(float sample)
    {
        voice.loopyPlay();
        alSourcePause(voice.sourceID);
        alSourcei(voice.sourceID, AL_LOOPING, AL_FALSE);
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
    // It would never end by itself.
    voice.loopyPlay();
    Fl::add_timeout(0, dataTimer, &mocap);
    for (int i = 0; i < 6000 && mocap.step <= 0; ++i) {
        waitForTick(mocap);
    }
    ASSERT_GT(mocap.step, 0);
    loseDevice();
    EXPECT_EQ(voice.getState(), AL_STOPPED);
    waitForTick(mocap);
    EXPECT_EQ(mocap.step, 0);
    voice.play();
    EXPECT_EQ(voice.getState(), AL_STOPPED) << "nothing plays on a lost device";
    waitForTick(mocap);
    EXPECT_EQ(mocap.step, 0);
    voice.cleanUp();
    OggSound::exitAL();
    openDevice();
}

TEST_F(MoCapClockTest, TheStepIsZeroAfterTheDeviceWasClosed)
{
    holdVoiceAt(10000);
    Fl::add_timeout(0, dataTimer, &mocap);
    waitForTick(mocap);
    EXPECT_EQ(mocap.step, 500);
    OggSound::exitAL();
    waitForTick(mocap);
    EXPECT_EQ(mocap.step, 0);
    EXPECT_EQ(voice.getState(), 0);
    voice.cleanUp();
    openDevice();
}

TEST_F(MoCapClockTest, WithoutASoundTheStepIsZero)
{
    mocap.sound = nullptr;
    Fl::add_timeout(0, dataTimer, &mocap);
    waitForTick(mocap);
    EXPECT_EQ(mocap.step, 0);
}

TEST_F(MoCapClockTest, TheClockArmsItselfAgainNinetyTimesASecond)
{
    for (void* argument : {static_cast<void*>(&mocap), static_cast<void*>(nullptr)}) {
        armedTimers().clear();
        dataTimer(argument);
        EXPECT_THAT(armedTimers(),
                    testing::ElementsAre(ArmedTimer{1.0 / 90.0, dataTimer, argument, true}));
        EXPECT_TRUE(Fl::has_timeout(dataTimer, argument));
    }
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

using MoCapClockDeathTest = MoCapClockTest;

TEST_F(MoCapClockDeathTest, TheLastRecordIsShownUntilTheVoiceIsBeyondIt)
{
    mocap.sensorDataList.push_back(new SensorData);
    for (int i = 0; i < mocap.numSteps; ++i) {
        mocap.sensorDataList[0]->pos.push_back(new Vec3(1, 1, 1));
    }
    Sensor sensor;
    const std::unique_ptr<SensorRep> body(sensor.rep);
    sensor.mocap = &mocap;
    sensor.sensorId = 0;
    Fl::add_timeout(0, dataTimer, &mocap);

    holdVoiceAt(19980);
    waitForTick(mocap);
    EXPECT_EQ(mocap.step, 999);
    sensor.doupdate();
    EXPECT_EQ(mocap.sensorDataList[0]->pos[999]->x, 0.45f) << "the last record is shown";

    holdVoiceAt(19981);
    waitForTick(mocap);
    EXPECT_EQ(mocap.step, 1000);
    // The process that ends is a copy of this one, and must not have a share in the device.
    voice.cleanUp();
    OggSound::exitAL();
    EXPECT_EXIT(sensor.doupdate(), testing::ExitedWithCode(1), "^$");
    openDevice();
}

} // namespace
