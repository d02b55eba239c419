#include "OggFiles.h"
#include "TempDirectory.h"
#include "VoiceLength.h"

#include <gmock/gmock.h>

namespace {

using show::voiceLength;

class ShowVoiceLengthTest : public testing::Test {
protected:
    TempDirectory folder;

    static void write(const std::string& bytes)
    {
        std::filesystem::create_directory("sound");
        TempDirectory::write("sound/magpie_vocal.ogg", bytes);
    }
};

TEST_F(ShowVoiceLengthTest, LastsAsLongAsItsSamplesTake)
{
    write(OggFiles::vorbis({.channels = 2, .rate = 22050, .samples = 33075}));
    EXPECT_EQ(voiceLength("."), 1.5);
}

TEST_F(ShowVoiceLengthTest, AChainIsAsLongAsAllItsTracks)
{
    const OggFiles::Tone tone{.rate = 8000, .samples = 4000};
    OggFiles::Tone next = tone;
    next.serial = 2;
    write(OggFiles::vorbis(tone) + OggFiles::vorbis(next));
    EXPECT_EQ(voiceLength("."), 1);
}

TEST_F(ShowVoiceLengthTest, WhatCannotBePlayedHasNoLength)
{
    EXPECT_EQ(voiceLength("."), std::nullopt);
    write("no sound");
    EXPECT_EQ(voiceLength("."), std::nullopt);
}

} // namespace
