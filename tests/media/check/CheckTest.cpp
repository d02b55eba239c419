#include "Check.h"

#include "CheckMessages.h"
#include "CheckedFolder.h"
#include "OggFiles.h"

#include <cstdio>
#include <cstdlib>
#include <sys/wait.h>

namespace {

using media::FileReport;
using media::Mark;
using testing::HasSubstr;

/// Runs kelpix-media and keeps what it prints.
class CheckProgramTest : public testing::Test {
protected:
    int run(const std::string& arguments)
    {
        const std::string file =
            testing::TempDir() + "kelpix-check-out-" + std::to_string(getpid());
        const std::string command =
            "'" KELPIX_MEDIA_PROGRAM "' " + arguments + " >'" + file + "' 2>&1";
        const int status = std::system(command.c_str());
        out = media::contentOf(file);
        std::filesystem::remove(file);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string out;
};

TEST_F(CheckProgramTest, TheSetIsFine)
{
    EXPECT_EQ(run("--check '" KELPIX_MEDIA_DIR "'"), 0) << out;
    for (const char* name : {"sound/magpie_vocal.ogg", "sound/bubbles_sound.ogg", "data/mocap.txt",
                             "data/dance.txt", "data/rehearsal.txt", "fonts/ChalkboardBold.ttf",
                             "data/underwater.jpg", "data/fish0.png", "data/bubble.png"}) {
        EXPECT_THAT(out, HasSubstr("ok     " + std::string(name) + ": "));
    }
    EXPECT_THAT(out, HasSubstr("\n9 files: 9 ok, 0 with hints, 0 wrong, 0 that stop the scene\n"));
}

TEST_F(CheckProgramTest, TheExitStatusSaysWhetherAnythingIsWrong)
{
    const CheckedFolder folder;
    const std::string check = "--check '" + folder.path().string() + "'";
    std::string dance = folder.read("data/dance.txt");
    dance.pop_back();
    folder.write("data/dance.txt", dance);
    EXPECT_EQ(run(check), 0) << out;
    EXPECT_THAT(out, HasSubstr("hint   data/dance.txt: does not end with a newline"));
    EXPECT_THAT(out, HasSubstr("9 files: 8 ok, 1 with hints, 0 wrong, 0 that"));

    folder.remove("data/fish0.png");
    EXPECT_EQ(run(check), 1) << out;
    EXPECT_THAT(out, HasSubstr("wrong  data/fish0.png: is missing"));
    EXPECT_THAT(out, HasSubstr("9 files: 7 ok, 1 with hints, 1 wrong, 0 that"));

    folder.remove("data/mocap.txt");
    EXPECT_EQ(run(check), 1) << out;
    EXPECT_THAT(out, HasSubstr("stops  data/mocap.txt: is missing"));
    EXPECT_THAT(out, HasSubstr("7 files: 5 ok, 0 with hints, 1 wrong, 1 that"));
}

TEST_F(CheckProgramTest, RecordingsAreMeasuredByTheVoice)
{
    const CheckedFolder folder;
    // 18 seconds instead of 120.
    folder.write("sound/magpie_vocal.ogg", folder.read("sound/bubbles_sound.ogg"));
    EXPECT_EQ(run("--check '" + folder.path().string() + "'"), 1);
    EXPECT_THAT(out, HasSubstr("the recording lasts 120.0 s, the voice 18.0 s: the dance would run "
                               "6.7 times as fast"));
    EXPECT_THAT(out, HasSubstr("moves by more than 0.012 in an update"));
}

TEST_F(CheckProgramTest, AnotherProgramMakesThePreview)
{
    // The scene's objects are given back by the end of that process.
    const char* options = std::getenv("ASAN_OPTIONS");
    const std::string asan =
        std::string(options == nullptr ? "" : options) + ":detect_leaks=0:verify_asan_link_order=0";
    ASSERT_EQ(setenv("ASAN_OPTIONS", asan.c_str(), 1), 0);
    const CheckedFolder folder;
    const std::string set = folder.path().string();
    // A short voice, and so few of the scene's steps.
    OggFiles::Tone voice;
    voice.samples = 44100;
    folder.write("sound/magpie_vocal.ogg", OggFiles::vorbis(voice));
    const std::string preview = "--check '" + set + "' --preview '" + set + "/sheet.png'";
    EXPECT_EQ(run(preview), 1) << "the dance is too long";
    EXPECT_THAT(out, HasSubstr("that stop the scene\n"));
    EXPECT_THAT(out, HasSubstr("\nsheet.png: the scene at 0.1, 0.3, 0.5, 0.7 and 0.9 s\n"));
    EXPECT_THAT(folder.read("sheet.png"), testing::StartsWith("\x89PNG"));
    folder.write("sheet.png", "mine");
    EXPECT_EQ(run(preview), 1);
    EXPECT_THAT(out, HasSubstr("sheet.png is there already; --force replaces it\n"));
    EXPECT_THAT(out, testing::EndsWith("no preview: kelpix-record ended with status 1\n"));
    EXPECT_EQ(folder.read("sheet.png"), "mine");
}

TEST_F(CheckProgramTest, WantsAFolderAndNothingElse)
{
    EXPECT_EQ(run("--check /nowhere"), 1);
    EXPECT_EQ(out, "kelpix-media: cannot check /nowhere: it is no folder\n");
    EXPECT_EQ(run("--check"), 2);
    EXPECT_EQ(run("--check '" KELPIX_MEDIA_DIR "' --out x"), 2);
    EXPECT_EQ(run("--seed 2 --check '" KELPIX_MEDIA_DIR "'"), 2);
    EXPECT_THAT(out, HasSubstr("--check DIR goes with no other option but --preview PICTURE"));
    EXPECT_EQ(run("--check '" KELPIX_MEDIA_DIR "' --preview x.jpg"), 2);
    EXPECT_THAT(out, HasSubstr("--preview takes a name that ends in .png, not \"x.jpg\""));
    EXPECT_EQ(run("--out x --preview x.png"), 2);
    EXPECT_THAT(out, HasSubstr("--preview PICTURE goes with --check DIR"));
    EXPECT_EQ(run("--help"), 0);
    EXPECT_THAT(out, HasSubstr("  --check DIR "));
}

TEST(CheckReadableTest, SaysWhyAFileCannotBeRead)
{
    const CheckedFolder folder;
    FileReport report{"loop", "", {}};
    std::filesystem::create_symlink("loop", folder.path() / "loop");
    EXPECT_FALSE(media::checkReadable(folder.path() / "loop", Mark::wrong, "so what", report));
    EXPECT_THAT(report, Says(Mark::wrong, "cannot be read: Too many levels of symbolic links"));

    report.remarks.clear();
    EXPECT_FALSE(media::checkReadable("/dev/null", Mark::stops, "so what", report));
    EXPECT_THAT(report, Says(Mark::stops, "is no regular file; so what"));

    folder.write("data/fish0.png", "");
    report.remarks.clear();
    EXPECT_TRUE(media::checkReadable(folder.path() / "data/fish0.png", Mark::wrong, "", report));
    EXPECT_THAT(report, IsFine());
    if (geteuid() == 0) {
        GTEST_SKIP() << "nothing is closed to root";
    }
    std::filesystem::permissions(folder.path() / "data/fish0.png", std::filesystem::perms::none);
    EXPECT_FALSE(media::checkReadable(folder.path() / "data/fish0.png", Mark::wrong, "", report));
    EXPECT_THAT(report, Says(Mark::wrong, "cannot be read: Permission denied"));
}

TEST(CheckReportTest, APathFromOutsideStaysOnItsLine)
{
    const FileReport report{"data/a\nok\x1b[2Jb.txt", "", {{Mark::stops, "is missing"}}};
    EXPECT_EQ(media::describe({report}), "stops  data/a\\x0aok\\x1b[2Jb.txt: is missing\n"
                                         "1 file: 0 ok, 0 with hints, 0 wrong, 1 that stop the "
                                         "scene\n");
}

TEST(CheckReportTest, AFileCountsByItsGravestRemark)
{
    FileReport report{"a", "", {}};
    EXPECT_EQ(report.mark(), Mark::ok);
    report.hint("1");
    EXPECT_TRUE(media::playsWell({report}));
    report.wrong("2");
    report.hint("3");
    EXPECT_EQ(report.mark(), Mark::wrong);
    EXPECT_FALSE(media::playsWell({report}));
    report.stops("4");
    EXPECT_EQ(report.mark(), Mark::stops);
}

TEST(CheckMessagesTest, CatchesBothStreamsWhileItLives)
{
    testing::internal::CaptureStdout();
    std::printf("before\n");
    {
        media::CheckMessages messages;
        std::printf("one\n");
        std::fflush(stdout);
        std::fprintf(stderr, "two\n");
        EXPECT_EQ(messages.take(), "one; two");
        EXPECT_EQ(messages.take(), "");
        std::printf("between\n");
        const media::CheckMessages unread;
        std::printf("three\n");
    }
    std::printf("after\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "before\nbetween\nafter\n");
}

} // namespace
