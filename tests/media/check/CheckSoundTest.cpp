#include "CheckSound.h"

#include "CheckedFolder.h"
#include "OggFiles.h"

#include <sys/stat.h>

namespace {

using media::checkBubbles;
using media::checkVoice;
using media::Mark;
using OggFiles::Tone;
using OggFiles::vorbis;

constexpr const char* VOICE = "sound/magpie_vocal.ogg";
constexpr const char* BUBBLES = "sound/bubbles_sound.ogg";

class CheckSoundTest : public testing::Test {
protected:
    media::FileReport voiceOf(const std::string& bytes) const
    {
        folder.write(VOICE, bytes);
        return checkVoice(folder.path()).report;
    }

    media::FileReport bubblesOf(const std::string& bytes) const
    {
        folder.write(BUBBLES, bytes);
        return checkBubbles(folder.path());
    }

    CheckedFolder folder;
};

TEST_F(CheckSoundTest, TheSetIsFine)
{
    const media::VoiceCheck voice = checkVoice(folder.path());
    EXPECT_THAT(voice.report, IsFine());
    EXPECT_EQ(voice.seconds, 120);
    EXPECT_EQ(voice.report.summary, "120.0 s, 44.1 kHz, stereo");
    EXPECT_THAT(checkBubbles(folder.path()), IsFine());
}

TEST_F(CheckSoundTest, AMissingSoundStopsTheScene)
{
    folder.remove(VOICE);
    folder.remove(BUBBLES);
    const media::VoiceCheck voice = checkVoice(folder.path());
    EXPECT_THAT(voice.report, Says(Mark::stops, "is missing; the scene ends"));
    EXPECT_EQ(voice.seconds, 0);
    EXPECT_THAT(checkBubbles(folder.path()), Says(Mark::stops, "is missing"));
    folder.makeFolder(VOICE);
    EXPECT_THAT(checkVoice(folder.path()).report, Says(Mark::stops, "is a folder"));
    ASSERT_EQ(mkfifo((folder.path() / BUBBLES).c_str(), 0600), 0);
    EXPECT_THAT(checkBubbles(folder.path()), Says(Mark::stops, "is no regular file"));
}

TEST_F(CheckSoundTest, WhatIsNoOggVorbisStopsTheScene)
{
    for (const std::string& bytes :
         {std::string(), std::string("RIFF"), OggFiles::unknownCodec()}) {
        EXPECT_THAT(voiceOf(bytes), Says(Mark::stops, "is no Ogg Vorbis file"));
        EXPECT_THAT(bubblesOf(bytes), Says(Mark::stops, "is no Ogg Vorbis file"));
    }
}

TEST_F(CheckSoundTest, DamageStopsTheScene)
{
    std::string bytes = vorbis({.channels = 2, .samples = 44100 * 20});
    bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] + 1);
    EXPECT_THAT(voiceOf(bytes), Says(Mark::stops, "is damaged after "));
    EXPECT_EQ(checkVoice(folder.path()).seconds, 0);
    EXPECT_THAT(bubblesOf(bytes), Says(Mark::stops, "is damaged after "));
}

TEST_F(CheckSoundTest, HintsAtUnusualRates)
{
    EXPECT_THAT(voiceOf(vorbis({.channels = 2, .rate = 8000})), Says(Mark::hint, "has 8.0 kHz"));
    EXPECT_THAT(voiceOf(vorbis({.channels = 2, .rate = 44000})), Says(Mark::hint, "unusual rate"));
    EXPECT_THAT(voiceOf(vorbis({.channels = 2, .rate = 48000})), IsFine());
}

TEST_F(CheckSoundTest, CountsChannels)
{
    EXPECT_THAT(voiceOf(vorbis({.channels = 1})), Says(Mark::hint, "is mono"));
    EXPECT_THAT(voiceOf(vorbis({.channels = 3})), Says(Mark::wrong, "has 3 channels"));
}

TEST_F(CheckSoundTest, FindsSilence)
{
    EXPECT_THAT(voiceOf(vorbis({.channels = 2, .loudness = 0})), Says(Mark::wrong, "is silent"));
    EXPECT_THAT(bubblesOf(vorbis({.channels = 2, .loudness = 0})), Says(Mark::wrong, "is silent"));
}

TEST_F(CheckSoundTest, FindsClipping)
{
    EXPECT_THAT(bubblesOf(vorbis({.channels = 2, .loudness = 1.5})), Says(Mark::wrong, "clips: "));
    EXPECT_THAT(bubblesOf(vorbis({.channels = 2, .loudness = 0.9f})), IsFine());
}

TEST_F(CheckSoundTest, AVoiceLeavesRoomForItsGain)
{
    EXPECT_THAT(voiceOf(vorbis({.channels = 2, .loudness = 0.8f})),
                Says(Mark::hint, "1.5 times as loud"));
    EXPECT_THAT(voiceOf(vorbis({.channels = 2, .loudness = 0.6f})), IsFine());
}

TEST_F(CheckSoundTest, FindsAClickWhereTheLoopCloses)
{
    // A quarter of a period is left over at the end of the second.
    EXPECT_THAT(bubblesOf(vorbis({.channels = 2, .pitch = 440.25})),
                Says(Mark::wrong, "the loop clicks"));
    EXPECT_THAT(bubblesOf(vorbis({.channels = 2, .pitch = 440})), IsFine());
    EXPECT_THAT(voiceOf(vorbis({.channels = 2, .pitch = 440.25})), IsFine()) << "it does not loop";
}

TEST_F(CheckSoundTest, FollowsChains)
{
    const std::string first = vorbis({.channels = 2, .serial = 1});
    EXPECT_THAT(voiceOf(first + vorbis({.channels = 2, .serial = 2})),
                Says(Mark::hint, "is a chain of 2 tracks"));
    EXPECT_EQ(checkVoice(folder.path()).seconds, 2);
    EXPECT_THAT(voiceOf(first + vorbis({.channels = 2, .rate = 48000, .serial = 2})),
                Says(Mark::wrong, "different rates or channels"));
    EXPECT_THAT(voiceOf(first + vorbis({.channels = 1, .serial = 2})),
                Says(Mark::wrong, "different rates or channels"));
}

TEST_F(CheckSoundTest, AVoiceWithoutSamplesIsNoClock)
{
    const media::FileReport report = voiceOf(vorbis({.channels = 2, .samples = 0}));
    EXPECT_GE(report.mark(), Mark::wrong);
    EXPECT_EQ(checkVoice(folder.path()).seconds, 0);
}

} // namespace
