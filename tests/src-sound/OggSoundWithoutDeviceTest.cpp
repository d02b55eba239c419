#include "OggSound.h"

#include "EarlyExit.h"
#include "OggFiles.h"
#include "TempDirectory.h"

#include <AL/alc.h>

namespace {

class OggSoundWithoutDeviceTest : public testing::Test {
protected:
    OggSoundWithoutDeviceTest()
    {
        int argc = 1;
        char name[] = "program";
        char* argv[] = {name, nullptr};
        OggSound::initAL(&argc, argv);
    }
    ~OggSoundWithoutDeviceTest() override { OggSound::exitAL(); }
};

TEST_F(OggSoundWithoutDeviceTest, TheDeviceIsMissing)
{
    EXPECT_EQ(alcGetCurrentContext(), nullptr);
}

TEST_F(OggSoundWithoutDeviceTest, ATrackIsDecodedAndStaysSilentAtItsStart)
{
    TempDirectory directory;
    TempDirectory::write("tone.ogg", OggFiles::vorbis({.channels = 2, .samples = 1000}));
    OggSound sound;
    sound.load("tone.ogg");
    sound.setVolume(1.5f);
    sound.play();
    EXPECT_EQ(sound.bufferData.size(), 4000u);
    EXPECT_EQ(sound.numSamples, 1000);
    EXPECT_EQ(sound.format, AL_FORMAT_STEREO16);
    EXPECT_EQ(sound.freq, 44100);
    EXPECT_EQ(sound.bufferID, 0u);
    EXPECT_EQ(sound.sourceID, 0u);
    EXPECT_EQ(sound.getPlaybackOffset(), 0);
    EXPECT_EQ(sound.getState(), 0);
    sound.loopyPlay();
    sound.stop();
    EXPECT_EQ(sound.getPlaybackOffset(), 0);
    sound.load("tone.ogg");
    sound.cleanUp();
    sound.cleanUp();
}

TEST_F(OggSoundWithoutDeviceTest, ASoundWithoutATrackIsHarmless)
{
    OggSound sound;
    sound.play();
    sound.loopyPlay();
    sound.setVolume(0.2f);
    sound.stop();
    EXPECT_EQ(sound.getState(), 0);
    EXPECT_EQ(sound.getPlaybackOffset(), 0);
}

} // namespace
