#include "Mixer.h"

#include "OggFiles.h"
#include "TempDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace {

using record::Mixer;
using record::Track;
using testing::Each;
using testing::ElementsAre;

Track stereo(std::vector<std::int16_t> samples, int rate = 1000)
{
    return {std::move(samples), 2, rate};
}

Track mono(std::vector<std::int16_t> samples, int rate = 1000)
{
    return {std::move(samples), 1, rate};
}

const Track SILENCE = stereo({});

TEST(RecordMixerTest, TheVoicePlaysOnceAtFullGain)
{
    const Mixer mixer(stereo({100, -200, 32767, -32768}), SILENCE);
    EXPECT_EQ(mixer.rate(), 1000);
    EXPECT_THAT(mixer.mix(0, 4), ElementsAre(100, -200, 32767, -32768, 0, 0, 0, 0));
}

TEST(RecordMixerTest, TheBubblesPlayWithoutEndAtAFifth)
{
    const Mixer mixer(SILENCE, stereo({100, 500, 1000, -1000}));
    EXPECT_THAT(mixer.mix(0, 5), ElementsAre(20, 100, 200, -200, 20, 100, 200, -200, 20, 100));
}

TEST(RecordMixerTest, AMonoTrackComesOutOnBothSides)
{
    EXPECT_THAT(Mixer(mono({1000, -500}), SILENCE).mix(0, 3),
                ElementsAre(600, 600, -300, -300, 0, 0));
    EXPECT_THAT(Mixer(SILENCE, mono({1000})).mix(0, 2), ElementsAre(120, 120, 120, 120));
}

TEST(RecordMixerTest, AddsBothAndRoundsToTheNearest)
{
    // 10 + 0.2 * 13 = 12.6, -10 - 0.2 * 13 = -12.6, 3 + 0.2 * 2 = 3.4, 0.2 * 2 = 0.4
    const Mixer mixer(stereo({10, -10, 3, 0}), stereo({13, -13, 2, 2}));
    EXPECT_THAT(mixer.mix(0, 2), ElementsAre(13, -13, 3, 0));
}

TEST(RecordMixerTest, ClampsWhatSixteenBitsCannotHold)
{
    const Mixer mixer(stereo({32767, -32768, 30000, -30000}), stereo({100, -100, 20000, -20000}));
    EXPECT_THAT(mixer.mix(0, 2), ElementsAre(32767, -32768, 32767, -32768));
}

TEST(RecordMixerTest, InterpolatesBubblesOfAnotherRate)
{
    // Two frames of bubbles last as long as eight of the output; the end runs into the beginning.
    const Mixer slow(stereo({}, 4000), stereo({0, 1000, 1000, 0}, 1000));
    EXPECT_THAT(slow.mix(0, 9), ElementsAre(0, 200, 50, 150, 100, 100, 150, 50, 200, 0, 150, 50,
                                            100, 100, 50, 150, 0, 200));
    // Three frames of bubbles pass in two of the output.
    const Mixer fast(stereo({}, 1000), mono({0, 1000, 2000}, 1500));
    EXPECT_THAT(fast.mix(0, 4), ElementsAre(0, 0, 180, 180, 0, 0, 180, 180));
}

TEST(RecordMixerTest, APieceIsTheSameAsThatPartOfTheWhole)
{
    const Mixer mixer(stereo({1, 2, 3, 4, 5, 6, 7, 8}), mono({50, 100, 150}, 700));
    const std::vector<std::int16_t> whole = mixer.mix(0, 20);
    const std::vector<std::int16_t> piece = mixer.mix(3, 10);
    EXPECT_EQ(piece, std::vector<std::int16_t>(whole.begin() + 6, whole.begin() + 26));
    EXPECT_THAT(mixer.mix(3, 0), testing::IsEmpty());
}

TEST(RecordMixerTest, SilenceIsSilent)
{
    EXPECT_THAT(Mixer(SILENCE, SILENCE).mix(1000000, 3), Each(0));
}

TEST(RecordMixerTest, HoursLaterTheBubblesAreStillInPlace)
{
    // After 36000 s at 192 kHz the loop of 7 frames at 44.1 kHz is at 44100 * 36000 mod 7 = 0.
    const Mixer mixer(stereo({}, 192000), mono({7000, 0, 0, 0, 0, 0, 0}, 44100));
    EXPECT_THAT(mixer.mix(std::int64_t{36000} * 192000, 1), ElementsAre(840, 840));
}

TEST(RecordMixerTest, TheHighestRatesDoNotOverflow)
{
    // Both rates are the same, so frame n of the loop of two goes with frame n.
    const int highest = std::numeric_limits<int>::max();
    const Mixer mixer(stereo({}, highest), mono({1000, 2000}, highest));
    EXPECT_THAT(mixer.mix(std::int64_t{36000} * highest, 2), ElementsAre(120, 120, 240, 240));
}

TEST(RecordMixerTest, TracksAreDecodedAsTheProgramPlaysThem)
{
    const TempDirectory folder;
    for (const int channels : {1, 2}) {
        OggFiles::Tone tone;
        tone.channels = channels;
        tone.rate = 22050;
        tone.samples = 5000;
        const std::string bytes = OggFiles::vorbis(tone);
        TempDirectory::write("tone.ogg", bytes);
        std::int64_t samples = 0;
        const Track track = record::loadTrack("tone.ogg", samples);
        EXPECT_EQ(samples, 5000);
        EXPECT_EQ(track.channels, channels);
        EXPECT_EQ(track.rate, 22050);
        EXPECT_EQ(track.frames(), 5000);
        EXPECT_EQ(track.samples, OggFiles::decode(bytes));
    }
}

TEST(RecordMixerTest, OfMoreChannelsWholePairsArePlayed)
{
    const TempDirectory folder;
    OggFiles::Tone tone;
    tone.channels = 3;
    tone.samples = 4097;
    TempDirectory::write("tone.ogg", OggFiles::vorbis(tone));
    std::int64_t samples = 0;
    const Track track = record::loadTrack("tone.ogg", samples);
    EXPECT_EQ(samples, 4097);
    EXPECT_EQ(track.channels, 2);
    EXPECT_EQ(track.samples.size(), 3 * 4097 / 2 * 2U);
}

TEST(RecordMixerTest, AMissingSoundEndsTheProcessAsInTheProgram)
{
    std::int64_t samples = 0;
    EXPECT_EXIT(record::loadTrack("/nowhere/voice.ogg", samples), testing::ExitedWithCode(255),
                "Cannot open /nowhere/voice.ogg for reading...");
}

} // namespace
