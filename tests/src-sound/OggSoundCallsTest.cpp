// The calls that OggSound makes to OpenAL, in their order. This program has its own versions of the
// library's functions, which only write down how they were called.

#include "OggSound.h"

#include "OggFiles.h"
#include "TempDirectory.h"

#include <AL/alut.h>
#include <cstdlib>
#include <gmock/gmock.h>
#include <sstream>

namespace {

std::vector<std::string> calls;
ALuint lastName = 0;

template<typename... Values>
void record(const char* function, const Values&... values)
{
    std::ostringstream call;
    call << function;
    ((call << ' ' << values), ...);
    calls.push_back(call.str());
}

std::vector<std::string> takeCalls()
{
    return std::exchange(calls, {});
}

} // namespace

extern "C" {

ALboolean alutInit(int* argc, char** argv)
{
    record("alutInit", *argc, argv[0]);
    return AL_TRUE;
}

ALboolean alutExit()
{
    record("alutExit");
    return AL_TRUE;
}

ALenum alGetError()
{
    record("alGetError");
    return AL_NO_ERROR;
}

void alGenBuffers(ALsizei n, ALuint* buffers)
{
    *buffers = ++lastName;
    record("alGenBuffers", n, *buffers);
}

void alGenSources(ALsizei n, ALuint* sources)
{
    *sources = ++lastName;
    record("alGenSources", n, *sources);
}

void alDeleteBuffers(ALsizei n, const ALuint* buffers)
{
    record("alDeleteBuffers", n, *buffers);
}

void alDeleteSources(ALsizei n, const ALuint* sources)
{
    record("alDeleteSources", n, *sources);
}

void alListener3f(ALenum param, ALfloat x, ALfloat y, ALfloat z)
{
    record("alListener3f", param == AL_POSITION ? "AL_POSITION" : "?", x, y, z);
}

void alSource3f(ALuint source, ALenum param, ALfloat x, ALfloat y, ALfloat z)
{
    record("alSource3f", source, param == AL_POSITION ? "AL_POSITION" : "?", x, y, z);
}

void alBufferData(ALuint buffer, ALenum format, const ALvoid* data, ALsizei size, ALsizei freq)
{
    const char* const name = format == AL_FORMAT_MONO16     ? "AL_FORMAT_MONO16"
                             : format == AL_FORMAT_STEREO16 ? "AL_FORMAT_STEREO16"
                                                            : "?";
    record("alBufferData", buffer, name, data, size, freq);
}

void alSourcei(ALuint source, ALenum param, ALint value)
{
    const char* const name = param == AL_BUFFER    ? "AL_BUFFER"
                             : param == AL_LOOPING ? "AL_LOOPING"
                                                   : "?";
    record("alSourcei", source, name, value);
}

void alSourcef(ALuint source, ALenum param, ALfloat value)
{
    record("alSourcef", source, param == AL_GAIN ? "AL_GAIN" : "?", value);
}

void alSourcePlay(ALuint source)
{
    record("alSourcePlay", source);
}

void alSourceStop(ALuint source)
{
    record("alSourceStop", source);
}

void alGetSourcei(ALuint source, ALenum param, ALint* value)
{
    record("alGetSourcei", source, param == AL_SOURCE_STATE ? "AL_SOURCE_STATE" : "?");
    *value = AL_PLAYING;
}

void alGetSourcef(ALuint source, ALenum param, ALfloat* value)
{
    const char* const name = param == AL_SEC_OFFSET      ? "AL_SEC_OFFSET"
                             : param == AL_SAMPLE_OFFSET ? "AL_SAMPLE_OFFSET"
                                                         : "?";
    record("alGetSourcef", source, name);
    *value = 250;
}

} // extern "C"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class OggSoundCallsTest : public testing::Test {
protected:
    void SetUp() override
    {
        calls.clear();
        lastName = 40;
    }

    static std::string bufferDataCall(ALuint buffer, const char* format, const OggSound& sound,
                                      std::size_t size, int freq)
    {
        std::ostringstream call;
        call << "alBufferData " << buffer << ' ' << format << ' '
             << static_cast<const void*>(sound.bufferData.data()) << ' ' << size << ' ' << freq;
        return call.str();
    }

    TempDirectory directory;
};

TEST_F(OggSoundCallsTest, TheDeviceIsOpenedWithTheProgramsArgumentsAndClosed)
{
    int argc = 3;
    char name[] = "program";
    char* argv[] = {name, nullptr};
    OggSound::initAL(&argc, argv);
    OggSound::exitAL();
    EXPECT_THAT(takeCalls(), ElementsAre("alutInit 3 program", "alGetError", "alutExit"));
}

TEST_F(OggSoundCallsTest, LoadMakesPlacesFillsAndBinds)
{
    TempDirectory::write("tone.ogg", OggFiles::vorbis({.rate = 22050, .samples = 1000}));
    OggSound sound;
    sound.load("tone.ogg");
    EXPECT_EQ(sound.bufferID, 41u);
    EXPECT_EQ(sound.sourceID, 42u);
    EXPECT_THAT(takeCalls(),
                ElementsAre("alGenBuffers 1 41", "alGenSources 1 42",
                            "alListener3f AL_POSITION 0 0 0", "alSource3f 42 AL_POSITION 0 0 0",
                            bufferDataCall(41, "AL_FORMAT_MONO16", sound, 2000, 22050),
                            "alSourcei 42 AL_BUFFER 41"));
}

TEST_F(OggSoundCallsTest, ATrackThatIsDecodedAlreadyIsLoadedByTheSameCalls)
{
    TempDirectory::write("tone.ogg",
                         OggFiles::vorbis({.channels = 2, .rate = 22050, .samples = 1000}));
    OggTrack track = OggTrack::decode("tone.ogg");
    EXPECT_THAT(takeCalls(), IsEmpty());
    OggSound sound;
    sound.load(std::move(track));
    EXPECT_EQ(sound.bufferData, OggTrack::decode("tone.ogg").data);
    EXPECT_EQ(sound.numSamples, 1000);
    EXPECT_THAT(takeCalls(),
                ElementsAre("alGenBuffers 1 41", "alGenSources 1 42",
                            "alListener3f AL_POSITION 0 0 0", "alSource3f 42 AL_POSITION 0 0 0",
                            bufferDataCall(41, "AL_FORMAT_STEREO16", sound, 4000, 22050),
                            "alSourcei 42 AL_BUFFER 41"));
}

TEST_F(OggSoundCallsTest, ATrackThatFailedEndsTheProcessWhenItIsLoadedAfterTheSourceIsMade)
{
    TempDirectory::write("text.ogg", "no track");
    const auto loadAndTell = [] {
        std::atexit([] {
            for (const std::string& call : calls) {
                std::fprintf(stderr, "%s\n", call.c_str());
            }
        });
        OggTrack track = OggTrack::decode("text.ogg");
        std::fputs("decoded\n", stderr);
        OggSound sound;
        sound.load(std::move(track));
    };
    EXPECT_EXIT(loadAndTell(), testing::ExitedWithCode(255),
                "^decoded\nError opening text\\.ogg for decoding\\.\\.\\.\n"
                "alGenBuffers 1 41\nalGenSources 1 42\nalListener3f AL_POSITION 0 0 0\n"
                "alSource3f 42 AL_POSITION 0 0 0\n$");
}

TEST_F(OggSoundCallsTest, PlayingAndVolumeAreOneCallEach)
{
    OggSound sound;
    sound.sourceID = 5;
    sound.play();
    sound.stop();
    sound.setVolume(1.5f);
    EXPECT_THAT(takeCalls(),
                ElementsAre("alSourcePlay 5", "alSourceStop 5", "alSourcef 5 AL_GAIN 1.5"));
    sound.loopyPlay();
    EXPECT_THAT(takeCalls(), ElementsAre("alSourcei 5 AL_LOOPING 1", "alSourcePlay 5"));
}

TEST_F(OggSoundCallsTest, TheStateIsAskedForAndKept)
{
    OggSound sound;
    sound.sourceID = 5;
    EXPECT_EQ(sound.getState(), AL_PLAYING);
    EXPECT_EQ(sound.state, AL_PLAYING);
    EXPECT_THAT(takeCalls(), ElementsAre("alGetSourcei 5 AL_SOURCE_STATE"));
}

TEST_F(OggSoundCallsTest, ThePositionIsAskedForInSecondsTooAndDividedBySamples)
{
    OggSound sound;
    sound.sourceID = 5;
    sound.numSamples = 16777217; // 2^24 + 1: has no float of its own
    EXPECT_EQ(sound.getPlaybackOffset(), 250.0f / 16777216.0f);
    EXPECT_EQ(sound.sampleOffset, 250);
    EXPECT_THAT(takeCalls(),
                ElementsAre("alGetSourcef 5 AL_SEC_OFFSET", "alGetSourcef 5 AL_SAMPLE_OFFSET"));
}

TEST_F(OggSoundCallsTest, ATrackWithoutSamplesIsAlwaysAtItsStart)
{
    OggSound sound;
    sound.sourceID = 5;
    EXPECT_EQ(sound.getPlaybackOffset(), 0);
}

TEST_F(OggSoundCallsTest, CleanUpDeletesTheBufferThenTheSource)
{
    OggSound sound;
    sound.bufferID = 4;
    sound.sourceID = 5;
    sound.cleanUp();
    EXPECT_THAT(takeCalls(), ElementsAre("alDeleteBuffers 1 4", "alDeleteSources 1 5"));
    EXPECT_EQ(sound.bufferID, 0u);
    EXPECT_EQ(sound.sourceID, 0u);
}

TEST_F(OggSoundCallsTest, DestructionCleansUp)
{
    {
        OggSound sound;
        sound.bufferID = 4;
        sound.sourceID = 5;
    }
    EXPECT_THAT(takeCalls(), ElementsAre("alDeleteBuffers 1 4", "alDeleteSources 1 5"));
}

TEST_F(OggSoundCallsTest, LoadingAgainGivesTheFirstNamesBackSourceFirst)
{
    TempDirectory::write("tone.ogg", OggFiles::vorbis({.samples = 1000}));
    OggSound sound;
    sound.load("tone.ogg");
    calls.clear();
    sound.load("tone.ogg");
    const std::vector<std::string> made = takeCalls();
    ASSERT_GE(made.size(), 4u);
    EXPECT_EQ(made[0], "alDeleteSources 1 42");
    EXPECT_EQ(made[1], "alDeleteBuffers 1 41");
    EXPECT_EQ(made[2], "alGenBuffers 1 43");
    EXPECT_EQ(made[3], "alGenSources 1 44");
    EXPECT_EQ(sound.bufferData.size(), 2000u) << "the second track replaces the first";
}

TEST_F(OggSoundCallsTest, OpenALGetsWholeStereoFramesOfSurroundSound)
{
    // Three channels of an odd number of samples: 6 * 1001 bytes are no multiple of 4.
    TempDirectory::write("three.ogg", OggFiles::vorbis({.channels = 3, .samples = 1001}));
    OggSound sound;
    sound.load("three.ogg");
    EXPECT_EQ(sound.bufferData.size(), 6006u);
    EXPECT_THAT(takeCalls(),
                testing::Contains(bufferDataCall(41, "AL_FORMAT_STEREO16", sound, 6004, 44100)));
}

TEST_F(OggSoundCallsTest, DecodingNeedsNoOpenAL)
{
    TempDirectory::write("tone.ogg", OggFiles::vorbis({.samples = 1000}));
    OggSound sound;
    std::vector<char> out;
    int format = 0;
    unsigned freq = 0;
    sound.loadOGG("tone.ogg", out, format, freq);
    EXPECT_THAT(takeCalls(), IsEmpty());
}

} // namespace
