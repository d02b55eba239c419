// The program itself, started as a user starts it.

#include "Scene.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <sys/resource.h>

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

const std::string BOTH_SOUNDS = "loading ogg file...\ndone.\nloading ogg file...\ndone.\n";

/// A folder of links to the media, from which a test takes what it wants to be missing.
class ProgramTest : public testing::Test {
protected:
    std::filesystem::path folder;

    void SetUp() override
    {
        std::string pattern = testing::TempDir() + "kelpix-program-XXXXXX";
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern;
        for (const char* part : {"data", "fonts", "sound"}) {
            std::filesystem::create_directory(folder / part);
            for (const auto& file : std::filesystem::directory_iterator(Scene::media() / part)) {
                std::filesystem::create_symlink(file, folder / part / file.path().filename());
            }
        }
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    void replace(const std::string& name, const std::string& text) const
    {
        std::filesystem::remove(folder / name);
        std::ofstream(folder / name) << text;
    }

    /// Keeps only the first bytes of a file.
    void cut(const std::string& name, std::size_t bytes) const
    {
        std::ifstream file(folder / name, std::ios::binary);
        const std::string whole(std::istreambuf_iterator<char>(file), {});
        ASSERT_GT(whole.size(), bytes);
        replace(name, whole.substr(0, bytes));
    }

    /// What the program says first when these files are missing.
    static std::string missing(const std::vector<std::string>& names)
    {
        std::string text = "kelpix: missing in this folder:\n";
        for (const std::string& name : names) {
            text += "  " + name + "\n";
        }
        return text + "Start kelpix in a folder that holds data/, sound/ and fonts/. "
                      "\"kelpix-media --out DIR\" makes one.\n";
    }
};

TEST_F(ProgramTest, ANormalStartPrintsItsProgressAndQEndsIt)
{
    // Mesa writes each GL error to standard error.
    Scene scene(folder, {{"MESA_DEBUG", "1"}});
    const std::string expected =
        Scene::startText(folder) + Scene::firstFrameText() + Scene::firstBubblesText();
    EXPECT_TRUE(scene.program.waitForOutput(expected));
    EXPECT_THAT(scene.title(), MatchesRegex("kelpix \\([0-9]+\\.[0-9] fps\\)"));
    scene.press("q");
    EXPECT_EQ(scene.program.wait(), 0);
    EXPECT_EQ(scene.program.output(), expected);
    EXPECT_EQ(scene.program.errors(), "");
}

TEST_F(ProgramTest, WithoutPicturesAndASoundDeviceItGoesOnUntilItsWindowIsClosed)
{
    const std::vector<std::string> pictures = {"data/underwater.jpg", "data/fish0.png",
                                               "data/bubble.png"};
    for (const std::string& name : pictures) {
        std::filesystem::remove(folder / name);
    }
    Scene scene(folder, {{"ALSOFT_DRIVERS", "none"}});
    const std::string expected = Scene::startText(folder) +
                                 "GLEW ok; can do GLSL; can do VBO; \n"
                                 "can't open data/underwater.jpg\n"
                                 "loaded texture data.\n"
                                 "-- Generate 240 frames of base animation.\n"
                                 "-- Generate 240 frames of base animation.\n"
                                 "-- Generate 240 frames of base animation.\n" +
                                 Scene::firstBubblesText();
    EXPECT_TRUE(scene.program.waitForOutput(expected));
    scene.askToClose();
    EXPECT_EQ(scene.program.wait(), 0);
    EXPECT_EQ(scene.program.output(), expected);
    EXPECT_EQ(scene.program.errors(),
              missing(pictures) +
                  "kelpix: no sound device: the scene is silent and its figures rest. "
                  "ALSOFT_DRIVERS=null plays to nowhere and lets them move.\n"
                  "Can't open file data/fish0.png\n"
                  "Can't open file data/bubble.png\n");
}

TEST_F(ProgramTest, AMissingVoiceEndsIt)
{
    std::filesystem::remove(folder / "sound/magpie_vocal.ogg");
    Scene scene(folder);
    EXPECT_EQ(scene.program.wait(), 255);
    EXPECT_EQ(scene.program.output(), "loading ogg file...\n");
    EXPECT_EQ(scene.program.errors(), missing({"sound/magpie_vocal.ogg"}) +
                                          "Cannot open sound/magpie_vocal.ogg for reading...\n");
}

TEST_F(ProgramTest, MissingBubblesEndItAfterTheVoiceIsLoaded)
{
    std::filesystem::remove(folder / "sound/bubbles_sound.ogg");
    Scene scene(folder);
    EXPECT_EQ(scene.program.wait(), 255);
    EXPECT_EQ(scene.program.output(), "loading ogg file...\ndone.\nloading ogg file...\n");
    EXPECT_EQ(scene.program.errors(), missing({"sound/bubbles_sound.ogg"}) +
                                          "Cannot open sound/bubbles_sound.ogg for reading...\n");
}

TEST_F(ProgramTest, ASoundOfAnotherKindEndsIt)
{
    replace("sound/magpie_vocal.ogg", "RIFF, not Ogg");
    Scene scene(folder);
    EXPECT_EQ(scene.program.wait(), 255);
    EXPECT_EQ(scene.program.output(), "loading ogg file...\n");
    EXPECT_EQ(scene.program.errors(), "Error opening sound/magpie_vocal.ogg for decoding...\n");
}

TEST_F(ProgramTest, AMissingIndexEndsItWithStatusZero)
{
    std::filesystem::remove(folder / "data/mocap.txt");
    Scene scene(folder);
    EXPECT_EQ(scene.program.wait(), 0);
    EXPECT_EQ(scene.program.output(), BOTH_SOUNDS + "No MOCAP specified!\n");
    EXPECT_EQ(scene.program.errors(), missing({"data/mocap.txt"}));
}

TEST_F(ProgramTest, AnIndexOfAnotherKindEndsItWithStatusZero)
{
    replace("data/mocap.txt", "MOCAPS 1 3 data/dance.txt\n");
    Scene scene(folder);
    EXPECT_EQ(scene.program.wait(), 0);
    EXPECT_EQ(scene.program.output(), BOTH_SOUNDS + "No MOCAP specified!\n");
    EXPECT_EQ(scene.program.errors(), "");
}

TEST_F(ProgramTest, AMissingRecordingEndsItWithStatusZero)
{
    replace("data/mocap.txt", "MOCAP\n1 3\ndata/none.txt\n");
    Scene scene(folder);
    EXPECT_EQ(scene.program.wait(), 0);
    EXPECT_EQ(scene.program.output(), BOTH_SOUNDS + "1 mocap datafile, picking 3 sensors only.\n"
                                                    "Loading mocap file 0, data/none.txt\n"
                                                    "Couldn't read file.\n");
    EXPECT_EQ(scene.program.errors(), "");
}

TEST_F(ProgramTest, ADanceThatBrokeOffEndsItAtTheVoicesEndWithoutAMessage)
{
    // Some twenty records for a voice of 14 seconds: no machine can be too slow to meet the last.
    cut("data/dance.txt", 1000);
    cut("sound/magpie_vocal.ogg",
        std::filesystem::file_size(folder / "sound/magpie_vocal.ogg") / 17 * 2);
    Scene scene(folder);
    EXPECT_EQ(scene.program.wait(), 1);
    EXPECT_EQ(scene.program.output(),
              Scene::startText(folder) + Scene::firstFrameText() + Scene::firstBubblesText());
    EXPECT_EQ(scene.program.errors(), "");
}

TEST_F(ProgramTest, AMissingFontEndsItAtTheFirstFrame)
{
    std::filesystem::remove(folder / "fonts/ChalkboardBold.ttf");
    Scene scene(folder);
    EXPECT_EQ(scene.program.wait(), 1);
    EXPECT_EQ(scene.program.output(),
              Scene::startText(folder) + "GLEW ok; can do GLSL; can do VBO; \n");
    EXPECT_EQ(scene.program.errors(),
              missing({"fonts/ChalkboardBold.ttf"}) +
                  "FT_New_Face failed (there is probably a problem with your font file)\n");
}

TEST_F(ProgramTest, AFontOfAnotherKindEndsItWithTheSameText)
{
    replace("fonts/ChalkboardBold.ttf", "no glyphs");
    Scene scene(folder);
    EXPECT_EQ(scene.program.wait(), 1);
    EXPECT_EQ(scene.program.errors(),
              "FT_New_Face failed (there is probably a problem with your font file)\n");
}

TEST_F(ProgramTest, WithoutADisplayItSaysSo)
{
    Scene scene(folder, {{"DISPLAY", std::nullopt}});
    EXPECT_EQ(scene.program.wait(), 1);
    EXPECT_EQ(scene.program.output(), Scene::startText(folder));
    EXPECT_THAT(
        scene.program.errors(),
        AllOf(StartsWith("kelpix: no window: "), HasSubstr("display"),
              EndsWith("Start it in a graphical session, or set DISPLAY to an X server.\n")));
}

/// An X server besides that of the test. It ends with this object.
class Server {
public:
    explicit Server(const std::vector<std::string>& options)
        : xvfb(std::make_unique<Program>(commandWith(options)))
    {
        EXPECT_TRUE(xvfb->waitForOutput("\n"));
        display = ":" + xvfb->output();
        display.pop_back();
    }

    std::unique_ptr<Program> xvfb;
    std::string display;

private:
    static std::vector<std::string> commandWith(const std::vector<std::string>& options)
    {
        std::vector<std::string> command = {"Xvfb",     "-displayfd", "1", "-nolisten",   "tcp",
                                            "-noreset", "-screen",    "0", "1280x1024x24"};
        command.insert(command.end(), options.begin(), options.end());
        return command;
    }
};

TEST_F(ProgramTest, OnADisplayWithoutGLItSaysSo)
{
    const Server server({"-extension", "GLX"});
    Scene scene(folder, {{"DISPLAY", server.display}});
    EXPECT_EQ(scene.program.wait(), 1);
    EXPECT_EQ(scene.program.output(), Scene::startText(folder));
    EXPECT_THAT(scene.program.errors(),
                EndsWith("kelpix: no window: the display offers no OpenGL with double buffering, "
                         "accumulation, alpha and depth.\n"));
}

TEST_F(ProgramTest, ItEndsWithItsDisplay)
{
    Server server({});
    Scene scene(folder, {{"DISPLAY", server.display}});
    EXPECT_TRUE(scene.program.waitForOutput("GLEW ok;"));
    server.xvfb.reset();
    EXPECT_EQ(scene.program.wait(), 1);
    EXPECT_THAT(scene.program.errors(), StartsWith("kelpix: no window: "));
}

TEST_F(ProgramTest, ItRunsOnWhenItsSoundDeviceIsLost)
{
    // A device that writes to a file is lost when the file cannot grow any more.
    replace("alsoft.conf", "[wave]\nfile=device.wav\n");
    Scene scene({"env", "ALSOFT_CONF=alsoft.conf", "ALSOFT_DRIVERS=wave", "sh", "-c",
                 "trap '' XFSZ; echo $$ >pid; exec \"$0\" 2>&1"},
                folder);
    const std::string expected =
        Scene::startText(folder) + Scene::firstFrameText() + Scene::firstBubblesText();
    EXPECT_TRUE(scene.program.waitForOutput(expected));
    EXPECT_EQ(scene.program.output(), expected);
    pid_t process = 0;
    std::ifstream(folder / "pid") >> process;
    const rlimit limit{65536, RLIM_INFINITY};
    ASSERT_EQ(prlimit(process, RLIMIT_FSIZE, &limit, nullptr), 0);
    EXPECT_TRUE(scene.program.waitForOutput("Error writing to file\n"));
    scene.press("q");
    EXPECT_EQ(scene.program.wait(), 0);
    EXPECT_THAT(scene.program.output(), StartsWith(expected + "AL lib: (EE) "));
}

#ifndef KELPIX_SANITIZED // whose own operator new has to stay

TEST_F(ProgramTest, WithoutMemoryAtItsStartItEndsWithOneLine)
{
    replace("no-memory", "");
    Scene scene(folder, {{"LD_PRELOAD", KELPIX_NO_MEMORY}});
    EXPECT_EQ(scene.program.wait(), 1);
    EXPECT_EQ(scene.program.output(), "");
    EXPECT_EQ(scene.program.errors(), "std::bad_alloc\n");
}

TEST_F(ProgramTest, ItEndsWithOneLineWhenMemoryIsUsedUpWhileItRuns)
{
    Scene scene(folder, {{"LD_PRELOAD", KELPIX_NO_MEMORY}});
    const std::string expected =
        Scene::startText(folder) + Scene::firstFrameText() + Scene::firstBubblesText();
    EXPECT_TRUE(scene.program.waitForOutput(expected));
    replace("no-memory", "");
    EXPECT_EQ(scene.program.wait(), 1);
    EXPECT_EQ(scene.program.output(), expected);
    EXPECT_EQ(scene.program.errors(), "std::bad_alloc\n");
}

#endif

TEST_F(ProgramTest, AnEmptyFolderIsDescribedWhole)
{
    std::filesystem::remove_all(folder);
    std::filesystem::create_directory(folder);
    Scene scene(folder);
    EXPECT_EQ(scene.program.wait(), 255);
    EXPECT_EQ(scene.program.output(), "loading ogg file...\n");
    EXPECT_EQ(scene.program.errors(),
              missing({"sound/magpie_vocal.ogg", "sound/bubbles_sound.ogg", "data/mocap.txt",
                       "fonts/ChalkboardBold.ttf", "data/underwater.jpg", "data/fish0.png",
                       "data/bubble.png"}) +
                  "Cannot open sound/magpie_vocal.ogg for reading...\n");
}

TEST_F(ProgramTest, WithoutStandardStreamsItRunsAllTheSame)
{
    // What it opens does not take their place: they are the null device.
    Scene scene({"sh", "-c", "echo $$ >pid; exec \"$0\" <&- >&- 2>&-"}, folder);
    scene.window();
    std::string pid;
    std::ifstream(folder / "pid") >> pid;
    for (const char* stream : {"0", "1", "2"}) {
        EXPECT_EQ(std::filesystem::read_symlink("/proc/" + pid + "/fd/" + stream), "/dev/null");
    }
    scene.press("q");
    EXPECT_EQ(scene.program.wait(), 0);
}

TEST_F(ProgramTest, ALogThatBreaksOffDoesNotEndIt)
{
    Scene scene({"sh", "-c", "{ \"$0\"; echo \"status $?\" >&2; } | true"}, folder);
    scene.window();
    scene.press("q");
    EXPECT_EQ(scene.program.wait(), 0);
    EXPECT_EQ(scene.program.errors(), "status 0\n");
}

TEST_F(ProgramTest, AFullDiskUnderItsLogDoesNotEndIt)
{
    Scene scene({"sh", "-c", "exec \"$0\" >/dev/full"}, folder);
    scene.window();
    scene.press("q");
    EXPECT_EQ(scene.program.wait(), 0);
    EXPECT_EQ(scene.program.errors(), "");
}

} // namespace
