#include "OggSound.h"

#include "EarlyExit.h"
#include "OggFiles.h"
#include "TempDirectory.h"

#include <algorithm>
#include <future>
#include <gmock/gmock.h>
#include <limits>
#include <sys/resource.h>
#include <sys/stat.h>

namespace {

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
    std::size_t capacity = 0;
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
    result.capacity = out.capacity();
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

TEST_F(OggDecodingTest, TracksCanBeDecodedAtOnce)
{
    const std::string files[] = {vorbis({.channels = 2, .samples = 200000, .pitch = 300}),
                                 vorbis({.channels = 1, .samples = 100000, .pitch = 1000})};
    TempDirectory::write("long.ogg", files[0]);
    TempDirectory::write("short.ogg", files[1]);
    const auto decodeOn = [](const char* path) {
        return std::async(std::launch::async, [path] { return OggTrack::decode(path); });
    };
    std::future<OggTrack> tracks[] = {decodeOn("long.ogg"), decodeOn("short.ogg")};
    for (int i = 0; i < 2; ++i) {
        const OggTrack track = tracks[i].get();
        EXPECT_EQ(track.state, OggFile::State::whole);
        EXPECT_EQ(track.channels, 2 - i);
        expectEqual(samplesOf(track.data), OggFiles::decode(files[i]));
    }
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
#ifdef KELPIX_SANITIZED
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

TEST_F(OggDecodingDeathTest, ATrackThatNoBufferCanHoldIsDamage)
{
    // Two bytes a sample; the buffer's size is an int.
    constexpr ogg_int64_t MOST = std::numeric_limits<int>::max() / 2;
    const std::string tone = vorbis({.samples = 441000});
    TempDirectory::write("longest.ogg", OggFiles::claiming(MOST, tone));
    EXPECT_EQ(decode("longest.ogg").numSamples, MOST);
    EXPECT_LE(decode("longest.ogg").capacity, 64 * tone.size())
        << "the claim alone takes no memory";
    TempDirectory::write("longer.ogg", OggFiles::claiming(MOST + 1, tone));
    expectEnd("longer.ogg", damaged("longer.ogg"));
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

TEST_F(OggDecodingDeathTest, AFileCutOrDamagedAnywhereIsDecodedOrEndsTheProcessWithItsMessage)
{
    const std::string file = vorbis({.samples = 6000});
    const auto decodeAndEnd = [] {
        decode("bad.ogg");
        std::fputs("decoded", stderr);
        _exit(255);
    };
    const std::string outcome = "^(Error opening bad\\.ogg for decoding\\.\\.\\.\n|Error decoding "
                                "bad\\.ogg\\.\\.\\.\n|decoded)$";
    for (std::size_t at = 0; at < file.size(); at += file.size() / 64) {
        TempDirectory::write("bad.ogg", file.substr(0, at));
        EXPECT_EXIT(decodeAndEnd(), ExitedWithCode(255), outcome) << "cut at " << at;
        std::string damaged = file;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x55);
        TempDirectory::write("bad.ogg", damaged);
        EXPECT_EXIT(decodeAndEnd(), ExitedWithCode(255), outcome) << "damaged at " << at;
    }
}

} // namespace
