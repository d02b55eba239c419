#include "Encoder.h"

#include "ErrorOf.h"
#include "TempDirectory.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <thread>

namespace {

namespace fs = std::filesystem;
using record::Encoder;
using record::encoderCommand;
using record::FilmFormat;
using record::Picture;
using testing::HasSubstr;

std::string content(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string joined(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

/// A folder to work in, and a program of that name in the place of ffmpeg.
class RecordEncoderTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::signal(SIGPIPE, SIG_IGN);
        path = std::getenv("PATH");
        setenv("PATH", ("bin:" + path).c_str(), 1);
    }

    void TearDown() override { setenv("PATH", path.c_str(), 1); }

    static void installEncoder(const std::string& script)
    {
        fs::create_directory("bin");
        TempDirectory::write("bin/ffmpeg",
                             "#!/bin/sh\nfor last; do :; done\nout=${last#file:}\n" + script);
        fs::permissions("bin/ffmpeg", fs::perms::owner_all);
    }

    static std::vector<std::int16_t> silence() { return {}; }

    TempDirectory folder;
    std::string path;
    FilmFormat format{"film.mp4", 2, 2, 40, 44100, {}};
    Picture frame{
        2, 2, {'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h', 'i', 'j', 'k', 'l', 'm', 'n', 'o', 'p'}};
};

TEST(RecordEncoderCommandTest, DescribesWhatComesThroughThePipes)
{
    EXPECT_EQ(joined(encoderCommand({"a.gif", 640, 480, 25, 48000, {}}, "a.part.gif")),
              "ffmpeg -hide_banner -nostdin -loglevel error -progress pipe:4 -y "
              "-f rawvideo -pix_fmt rgb0 -s 640x480 -framerate 25 -i pipe:0 "
              "-f s16le -ar 48000 -ac 2 -i pipe:3 file:a.part.gif");
}

TEST(RecordEncoderCommandTest, MakesFilmsThatEveryPlayerShows)
{
    const auto optionsFor = [](const char* name) {
        const std::string command = joined(encoderCommand({name, 2, 2, 40, 1, {"-x", "y"}}, "o"));
        return command.substr(command.find("pipe:3") + 7);
    };
    const std::string h264 = "-c:v libx264 -preset veryfast -crf 18 -pix_fmt yuv420p ";
    EXPECT_EQ(optionsFor("a.mp4"), h264 + "-movflags +faststart -x y file:o");
    EXPECT_EQ(optionsFor("a.m4v"), h264 + "-movflags +faststart -x y file:o");
    EXPECT_EQ(optionsFor("a.mov"), h264 + "-movflags +faststart -x y file:o");
    EXPECT_EQ(optionsFor("a.mkv"), h264 + "-x y file:o");
    EXPECT_EQ(optionsFor("a.webm"), "-pix_fmt yuv420p -x y file:o");
    EXPECT_EQ(optionsFor("a.nut"), "-x y file:o");
}

TEST_F(RecordEncoderTest, HandsOverFramesAndSoundAndNamesTheFilm)
{
    installEncoder("cat <&3 >sound & cat >$out; wait");
    int pieces = 0;
    Encoder encoder(format, [&]() -> std::vector<std::int16_t> {
        return ++pieces <= 2 ? std::vector<std::int16_t>{0x4241, 0x4443}
                             : std::vector<std::int16_t>{};
    });
    EXPECT_TRUE(encoder.write(frame));
    EXPECT_TRUE(encoder.write(frame));
    EXPECT_FALSE(fs::exists("film.mp4"));
    encoder.finish();
    EXPECT_EQ(content("film.mp4"), "abcdefghijklmnopabcdefghijklmnop");
    EXPECT_EQ(content("sound"), "ABCDABCD");
    EXPECT_FALSE(fs::exists("film.part.mp4"));
}

TEST_F(RecordEncoderTest, TellsWhatTheEncoderHasTaken)
{
    installEncoder("echo frame=1 >&4; echo progress=continue >&4; cat >$out\n"
                   "echo frame=2 >&4; echo progress=end >&4");
    Encoder encoder(format, silence);
    EXPECT_EQ(encoder.taken(), 0);
    int calls = 0;
    while (encoder.taken() == 0) {
        ASSERT_TRUE(encoder.write(frame));
    }
    EXPECT_EQ(encoder.taken(), 1);
    encoder.finish([&] { ++calls; });
    EXPECT_EQ(encoder.taken(), 2);
    EXPECT_GE(calls, 1);
}

TEST_F(RecordEncoderTest, FfmpegReportsEveryFrameThatItWasGiven)
{
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{}, std::vector<std::string>{"-r", "20"}}) {
        Encoder encoder({"film.nut", 2, 2, 40, 44100, options}, silence);
        std::int64_t before = 0;
        for (int written = 0; written < 50; ++written) {
            ASSERT_TRUE(encoder.write(frame));
            EXPECT_LE(before, encoder.taken());
            EXPECT_LE(encoder.taken(), written + 1);
            before = encoder.taken();
        }
        encoder.finish();
        EXPECT_EQ(encoder.taken(), 50);
    }
}

TEST_F(RecordEncoderTest, ReportsThatNobodyReadsHoldNothingUp)
{
    // More than a pipe holds, before the first byte of a film is read.
    installEncoder("yes frame=3 | head -n 200000 >&4; echo progress=end >&4; cat >$out");
    Encoder encoder(format, silence);
    EXPECT_TRUE(encoder.write(frame));
    encoder.finish();
    EXPECT_EQ(encoder.taken(), 3);
}

TEST_F(RecordEncoderTest, WhoeverWaitsForTheEndMayGiveUp)
{
    installEncoder("echo half >$out; cat >/dev/null; sleep 1000");
    Encoder encoder(format, silence);
    encoder.write(frame);
    EXPECT_EQ(errorOf([&] { encoder.finish([] { throw std::runtime_error("enough"); }); }),
              "enough");
    encoder.abandon();
    EXPECT_FALSE(fs::exists("film.part.mp4"));
}

TEST_F(RecordEncoderTest, KeepsNothingWhenTheEncoderFails)
{
    installEncoder("echo half >$out; cat >/dev/null; exit 3");
    TempDirectory::write("film.mp4", "old");
    Encoder encoder(format, silence);
    encoder.write(frame);
    EXPECT_EQ(errorOf([&] { encoder.finish(); }), "no film: ffmpeg ended with status 3");
    EXPECT_EQ(content("film.mp4"), "old");
    EXPECT_FALSE(fs::exists("film.part.mp4"));
}

TEST_F(RecordEncoderTest, AFilmOfNoBytesIsNone)
{
    for (const char* script : {"cat >/dev/null", "cat >/dev/null; rm $out"}) {
        installEncoder(script);
        Encoder encoder(format, silence);
        encoder.write(frame);
        EXPECT_EQ(errorOf([&] { encoder.finish(); }), "cannot write film.mp4: nothing was written");
    }
    EXPECT_FALSE(fs::exists("film.mp4"));
    EXPECT_FALSE(fs::exists("film.part.mp4"));
}

TEST_F(RecordEncoderTest, NoticesAnEncoderThatDiesEarly)
{
    installEncoder("kill -9 $$");
    Encoder encoder(format, silence);
    EXPECT_EQ(errorOf([&] {
                  while (encoder.write(frame)) {
                  }
              }),
              "no film: ffmpeg ended by signal 9");
    EXPECT_FALSE(fs::exists("film.part.mp4"));
}

TEST_F(RecordEncoderTest, ABrokenPipeEndsTheEncoderThoughNotThisProgram)
{
    installEncoder("echo film >$out; kill -PIPE $$; cat >/dev/null");
    Encoder encoder(format, silence);
    EXPECT_EQ(errorOf([&] { encoder.finish(); }), "no film: ffmpeg ended by signal 13");
}

TEST_F(RecordEncoderTest, AnEncoderMayHaveEnoughBeforeTheEnd)
{
    installEncoder("echo short >$out");
    Encoder encoder(format, silence);
    while (encoder.write(frame)) {
    }
    EXPECT_FALSE(encoder.write(frame));
    encoder.finish();
    EXPECT_EQ(content("film.mp4"), "short\n");
}

TEST_F(RecordEncoderTest, WhoWaitsForAnEncoderThatTakesNothingIsAskedMeanwhile)
{
    installEncoder("exec sleep 1000");
    Encoder encoder(format, silence);
    // More than the largest pipe holds.
    Picture large{1024, 1024, {}};
    large.pixels.resize(large.rowBytes() * 1024);
    int calls = 0;
    const auto waiting = [&calls] {
        if (++calls == 2) {
            throw std::runtime_error("enough");
        }
    };
    EXPECT_EQ(errorOf([&] { encoder.write(large, waiting); }), "enough");
}

TEST_F(RecordEncoderTest, AFilmThatIsAbandonedLeavesNothing)
{
    installEncoder("echo $$ >pid.new; mv pid.new pid; echo half >$out; exec cat >/dev/null");
    {
        // Sound that nobody reads does not hold it up.
        Encoder encoder(format, [] { return std::vector<std::int16_t>(100000); });
        encoder.write(frame);
        while (!fs::exists("pid")) {
        }
    }
    EXPECT_FALSE(fs::exists("film.part.mp4"));
    EXPECT_FALSE(fs::exists("film.mp4"));
    EXPECT_EQ(kill(std::stoi(content("pid")), 0), -1) << "the encoder still runs";
}

/// Whether a process runs; one that has ended and waits to be fetched does not.
bool isRunning(const std::string& pid)
{
    std::ifstream file("/proc/" + pid + "/stat");
    std::string ignored;
    std::string state;
    return file >> ignored >> ignored >> state && state != "Z";
}

TEST_F(RecordEncoderTest, WhatTheEncoderHasStartedEndsWithIt)
{
    // The second process holds neither the pipes nor the terminal.
    installEncoder("sleep 1000 <&- 3<&- >/dev/null 2>&1 &\n"
                   "echo $! >pid.new; mv pid.new pid; exec cat >/dev/null");
    {
        Encoder encoder(format, silence);
        while (!fs::exists("pid")) {
        }
        std::string pid;
        std::ifstream("pid") >> pid;
        ASSERT_TRUE(isRunning(pid));
    }
    std::string pid;
    std::ifstream("pid") >> pid;
    // The signal is on its way when abandon returns.
    for (int tries = 0; tries < 1000 && isRunning(pid); ++tries) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    if (isRunning(pid)) {
        ADD_FAILURE() << "it still runs";
        kill(std::stoi(pid), SIGKILL);
    }
}

TEST_F(RecordEncoderTest, NamesThePackageWhenThereIsNoEncoder)
{
    setenv("PATH", "/nowhere", 1);
    EXPECT_EQ(errorOf([&] { Encoder(format, silence); }),
              "a film needs ffmpeg: install Debian's package ffmpeg");
    EXPECT_TRUE(fs::is_empty("."));
}

TEST_F(RecordEncoderTest, SaysWhyTheEncoderDoesNotStart)
{
    installEncoder("");
    fs::permissions("bin/ffmpeg", fs::perms::owner_read);
    setenv("PATH", "bin", 1);
    EXPECT_EQ(errorOf([&] { Encoder(format, silence); }), "cannot start ffmpeg: Permission denied");
}

TEST_F(RecordEncoderTest, WritesNothingWhereTheFilmHasNoPlace)
{
    format.path = "nowhere/film.mp4";
    EXPECT_EQ(errorOf([&] { Encoder(format, silence); }),
              "cannot write nowhere/film.mp4: No such file or directory");
}

} // namespace
