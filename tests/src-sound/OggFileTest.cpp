#include "OggFile.h"

#include "OggFiles.h"
#include "TempDirectory.h"

#include <cstddef>
#include <gtest/gtest.h>

namespace {

// What its samples are is for OggDecodingTest.

TEST(OggFileTest, IsReadToItsEndBlockByBlock)
{
    const TempDirectory folder;
    TempDirectory::write("tone.ogg", OggFiles::vorbis({.channels = 2, .samples = 50000}));
    OggFile file("tone.ogg");
    ASSERT_EQ(file.state(), OggFile::State::open);
    EXPECT_EQ(file.samples(), 50000);
    std::size_t bytes = 0;
    for (auto block = file.read(); !block.empty(); block = file.read()) {
        EXPECT_EQ(file.state(), OggFile::State::open);
        EXPECT_EQ(block.size() % 4, 0u) << "whole frames";
        bytes += block.size();
    }
    EXPECT_EQ(bytes, 200000u);
    EXPECT_EQ(file.state(), OggFile::State::whole);
    EXPECT_TRUE(file.read().empty()) << "nothing follows";
    EXPECT_EQ(file.state(), OggFile::State::whole);
}

TEST(OggFileTest, WhatIsNotOpenHasNothingToRead)
{
    const TempDirectory folder;
    TempDirectory::write("text.ogg", "no sound");
    OggFile missing("missing.ogg");
    OggFile text("text.ogg");
    EXPECT_EQ(missing.state(), OggFile::State::noFile);
    EXPECT_EQ(text.state(), OggFile::State::noVorbis);
    for (OggFile* file : {&missing, &text}) {
        const OggFile::State before = file->state();
        EXPECT_EQ(file->expectedBytes(), 0u);
        EXPECT_TRUE(file->read().empty());
        EXPECT_EQ(file->state(), before);
    }
}

} // namespace
