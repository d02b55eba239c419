#include "OggSound.h"

#include "EarlyExit.h"
#include "OggFiles.h"
#include "TempDirectory.h"

#include <AL/alc.h>
#include <chrono>
#include <cstring>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <type_traits>

namespace {

static_assert(!std::is_polymorphic_v<OggSound>);
static_assert(std::is_same_v<decltype(OggSound::state), ALint>);
static_assert(std::is_same_v<decltype(OggSound::numSamples), ogg_int64_t>);
static_assert(std::is_same_v<decltype(OggSound::bufferData), std::vector<char>>);

using OggFiles::Tone;
using OggFiles::vorbis;
using testing::ExitedWithCode;

std::vector<std::int16_t> samplesOf(const std::vector<char>& bytes)
{
    std::vector<std::int16_t> samples(bytes.size() / 2);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const auto low = static_cast<unsigned char>(bytes[2 * i]);
        const auto high = static_cast<unsigned char>(bytes[2 * i + 1]);
        samples[i] = static_cast<std::int16_t>(low | high << 8);
    }
    return samples;
}

/// What loadOGG gives.
struct Decoded {
    std::vector<std::int16_t> samples;
    ogg_int64_t numSamples = 0;
    int format = 0;
    unsigned freq = 0;
    std::size_t bytes = 0;
};

Decoded decode(const char* path)
{
    OggSound sound;
    Decoded result;
    std::vector<char> out;
    sound.loadOGG(path, out, result.format, result.freq);
    result.samples = samplesOf(out);
    result.numSamples = sound.numSamples;
    result.bytes = out.size();
    return result;
}

class OggDecodingTest : public testing::Test {
protected:
    TempDirectory directory;

    /// Expects the same samples but for the last bit, in which rounding may differ.
    static void expectEqual(const std::vector<std::int16_t>& samples,
                            const std::vector<std::int16_t>& expected)
    {
        ASSERT_EQ(samples.size(), expected.size());
        for (std::size_t i = 0; i < samples.size(); ++i) {
            ASSERT_NEAR(samples[i], expected[i], 1) << "sample " << i;
        }
    }
};

// The names ending in DeathTest run first, before a sound device has threads.
class OggDecodingDeathTest : public OggDecodingTest {
protected:
    static void expectEnd(const char* path, const std::string& message)
    {
        OggSound sound;
        EXPECT_EXIT(sound.load(path), ExitedWithCode(255), message) << path;
    }

    // What the standard error stream then holds, as regular expressions.
    static std::string cannotOpen(std::string path)
    {
        return path.insert(0, "^Cannot open ").append(" for reading\\.\\.\\.\n$");
    }
    static std::string cannotDecode(std::string path)
    {
        return path.insert(0, "^Error opening ").append(" for decoding\\.\\.\\.\n$");
    }
    static std::string damaged(std::string path)
    {
        return path.insert(0, "^Error decoding ").append("\\.\\.\\.\n$");
    }
};

TEST_F(OggDecodingTest, AMonoTrackIsDecodedSampleBySample)
{
    const std::string file = vorbis({.rate = 22050, .samples = 30001});
    TempDirectory::write("mono.ogg", file);
    const Decoded track = decode("mono.ogg");
    EXPECT_EQ(track.format, AL_FORMAT_MONO16);
    EXPECT_EQ(track.freq, 22050u);
    EXPECT_EQ(track.numSamples, 30001);
    EXPECT_EQ(track.bytes, 2u * 30001);
    expectEqual(track.samples, OggFiles::decode(file));
    EXPECT_NEAR(*std::ranges::max_element(track.samples), 16384, 1500) << "the tone is there";
}

TEST_F(OggDecodingTest, AStereoTrackIsInterleaved)
{
    const std::string file = vorbis({.channels = 2, .rate = 48000, .samples = 20000});
    TempDirectory::write("stereo.ogg", file);
    const Decoded track = decode("stereo.ogg");
    EXPECT_EQ(track.format, AL_FORMAT_STEREO16);
    EXPECT_EQ(track.freq, 48000u);
    EXPECT_EQ(track.numSamples, 20000);
    EXPECT_EQ(track.bytes, 4u * 20000);
    expectEqual(track.samples, OggFiles::decode(file));
}

TEST_F(OggDecodingTest, MoreThanTwoChannelsCountAsStereoAndKeepAllBytes)
{
    for (int channels = 3; channels <= 8; ++channels) {
        const std::string file = vorbis({.channels = channels, .samples = 5001});
        TempDirectory::write("surround.ogg", file);
        const Decoded track = decode("surround.ogg");
        EXPECT_EQ(track.format, AL_FORMAT_STEREO16);
        EXPECT_EQ(track.bytes, 2u * static_cast<unsigned>(channels) * 5001);
        expectEqual(track.samples, OggFiles::decode(file));
    }
}

TEST_F(OggDecodingTest, LoudSamplesAreClipped)
{
    const std::string file = vorbis({.loudness = 3});
    TempDirectory::write("loud.ogg", file);
    const Decoded track = decode("loud.ogg");
    EXPECT_EQ(*std::ranges::max_element(track.samples), 32767);
    EXPECT_EQ(*std::ranges::min_element(track.samples), -32768);
    expectEqual(track.samples, OggFiles::decode(file));
}

TEST_F(OggDecodingTest, AllLinksOfAChainAreDecoded)
{
    // The short ones have all their audio in one page of the file.
    for (const int samples : {900, 9000, 441000}) {
        const std::string links[] = {vorbis({.samples = samples, .serial = 1}),
                                     vorbis({.samples = 7001, .serial = 2, .pitch = 1000}),
                                     vorbis({.samples = 300000, .serial = 3, .pitch = 300})};
        TempDirectory::write("chain.ogg", links[0] + links[1] + links[2]);
        const Decoded track = decode("chain.ogg");
        EXPECT_EQ(track.numSamples, samples + 7001 + 300000);
        std::vector<std::int16_t> expected;
        for (const std::string& link : links) {
            const std::vector<std::int16_t> part = OggFiles::decode(link);
            expected.insert(expected.end(), part.begin(), part.end());
        }
        expectEqual(track.samples, expected);
    }
}

TEST_F(OggDecodingTest, TheFirstLinkOfAChainGivesFormatAndRate)
{
    TempDirectory::write("chain.ogg",
                         vorbis({.channels = 1, .rate = 8000, .samples = 900, .serial = 1}) +
                             vorbis({.channels = 2, .rate = 44100, .samples = 800, .serial = 2}));
    const Decoded track = decode("chain.ogg");
    EXPECT_EQ(track.format, AL_FORMAT_MONO16);
    EXPECT_EQ(track.freq, 8000u);
    EXPECT_EQ(track.numSamples, 1700);
    EXPECT_EQ(track.bytes, 2u * 900 + 4u * 800);
}

TEST_F(OggDecodingTest, TheTrackIsAppendedToWhatIsThere)
{
    TempDirectory::write("tone.ogg", vorbis({.samples = 500}));
    OggSound sound;
    std::vector<char> out = {'a', 'b'};
    int format = 0;
    unsigned freq = 0;
    sound.loadOGG("tone.ogg", out, format, freq);
    EXPECT_EQ(out.size(), 1002u);
    EXPECT_EQ(std::string(out.data(), 2), "ab");
    EXPECT_TRUE(sound.bufferData.empty());
    EXPECT_EQ(sound.format, 0) << "the outputs are the caller's";
}

TEST_F(OggDecodingTest, ATrackWithoutSamplesIsEmpty)
{
    TempDirectory::write("nothing.ogg", vorbis({.samples = 0}));
    const Decoded track = decode("nothing.ogg");
    EXPECT_EQ(track.numSamples, 0);
    EXPECT_EQ(track.bytes, 0u);
    EXPECT_EQ(track.format, AL_FORMAT_MONO16);
}

TEST_F(OggDecodingTest, AFileThatEndsInItsAudioGivesWhatCameBefore)
{
    const std::string file = vorbis({.samples = 441000});
    const std::vector<std::int16_t> whole = OggFiles::decode(file);
    for (const std::size_t part : {2u, 3u, 5u}) {
        TempDirectory::write("cut.ogg", file.substr(0, file.size() - file.size() / part));
        const Decoded track = decode("cut.ogg");
        ASSERT_LT(track.samples.size(), whole.size());
        ASSERT_GT(track.samples.size(), whole.size() / 4);
        expectEqual(track.samples,
                    {whole.begin(), whole.begin() + static_cast<long>(track.samples.size())});
    }
}

TEST_F(OggDecodingDeathTest, AMissingFileCannotBeOpened)
{
    expectEnd("missing.ogg", cannotOpen("missing.ogg"));
    expectEnd("", cannotOpen(""));
    expectEnd(nullptr, cannotOpen(""));
}

TEST_F(OggDecodingDeathTest, APipeOrADeviceCannotBeOpenedAndKeepsNobodyWaiting)
{
    ASSERT_EQ(mkfifo("pipe.ogg", 0600), 0);
    expectEnd("pipe.ogg", cannotOpen("pipe.ogg"));
    expectEnd("/dev/zero", cannotOpen("/dev/zero"));
}

TEST_F(OggDecodingDeathTest, ADirectoryOpensAndHoldsNoTrack)
{
    expectEnd("/", cannotDecode("/"));
}

TEST_F(OggDecodingDeathTest, AFileOfAnotherKindIsNoTrack)
{
    TempDirectory::write("empty.ogg", "");
    expectEnd("empty.ogg", cannotDecode("empty.ogg"));
    TempDirectory::write("text.ogg", std::string(200000, 'x'));
    expectEnd("text.ogg", cannotDecode("text.ogg"));
    TempDirectory::write("other.ogg", OggFiles::unknownCodec());
    expectEnd("other.ogg", cannotDecode("other.ogg"));
}

TEST_F(OggDecodingDeathTest, AFileThatEndsInItsHeaderIsNoTrack)
{
    const std::string file = vorbis({});
    for (const std::size_t size : {3u, 27u, 40u, 58u, 80u, 1000u}) {
        TempDirectory::write("cut.ogg", file.substr(0, size));
        expectEnd("cut.ogg", cannotDecode("cut.ogg"));
    }
}

TEST_F(OggDecodingDeathTest, AFlippedBitInTheHeaderIsNoTrack)
{
    std::string file = vorbis({});
    file[35] = static_cast<char>(file[35] ^ 1);
    TempDirectory::write("flipped.ogg", file);
    expectEnd("flipped.ogg", cannotDecode("flipped.ogg"));
}

TEST_F(OggDecodingDeathTest, AFlippedBitInTheAudioIsDamage)
{
    std::string file = vorbis({.samples = 441000});
    const std::size_t middle = file.size() / 2;
    file[middle] = static_cast<char>(file[middle] ^ 1);
    TempDirectory::write("flipped.ogg", file);
    expectEnd("flipped.ogg", damaged("flipped.ogg"));
}

TEST_F(OggDecodingDeathTest, AMissingPieceOfTheAudioIsDamage)
{
    std::string file = vorbis({.samples = 441000});
    file.erase(file.size() / 2, 6000);
    TempDirectory::write("hole.ogg", file);
    expectEnd("hole.ogg", damaged("hole.ogg"));
}

TEST_F(OggDecodingDeathTest, ATrackThatMemoryCannotHoldIsDamage)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer's own memory counts too";
#endif
    TempDirectory::write("long.ogg", vorbis({.samples = 20000000, .loudness = 0}));
    const auto loadWithLittleMemory = [] {
        std::ifstream usage("/proc/self/statm");
        rlim_t pages = 0;
        usage >> pages;
        const rlim_t limit = pages * 4096 + (rlim_t{20} << 20);
        const rlimit limits{limit, limit};
        setrlimit(RLIMIT_AS, &limits);
        decode("long.ogg");
    };
    EXPECT_EXIT(loadWithLittleMemory(), ExitedWithCode(255), damaged("long.ogg"));
}

TEST_F(OggDecodingDeathTest, AFailureEndsTheProcessAlsoWhileSoundPlays)
{
    const auto failWhilePlaying = [] {
        int argc = 1;
        char name[] = "program";
        char* argv[] = {name, nullptr};
        OggSound::initAL(&argc, argv);
        TempDirectory::write("tone.ogg", vorbis({}));
        OggSound voice;
        voice.load("tone.ogg");
        voice.loopyPlay();
        OggSound bubbles;
        bubbles.load("missing.ogg");
    };
    // OpenAL may add a line of its own, about the device that nobody closed.
    EXPECT_EXIT(failWhilePlaying(), ExitedWithCode(255),
                "^Cannot open missing\\.ogg for reading\\.\\.\\.\n(AL lib.*\n)?$");
}

/// A test with a sound device. The null driver's clock runs in real time, so no test relies on how
/// far it got by itself: a paused source stands still, and its position can be set.
class OggSoundTest : public OggDecodingTest {
protected:
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
    sound.play();
    alSourcePause(sound.sourceID);
    alSourcef(sound.sourceID, AL_SAMPLE_OFFSET, 40000);
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
    sound.play();
    alSourcePause(source);
    alSourcef(source, AL_SAMPLE_OFFSET, 500);
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
