#include "OggFiles.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;

std::string content(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// The files below a folder with their content, by name.
std::vector<std::pair<std::string, std::string>> filesOf(const fs::path& folder)
{
    std::vector<std::pair<std::string, std::string>> files;
    if (fs::is_directory(folder)) {
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            if (entry.is_regular_file()) {
                files.emplace_back(fs::relative(entry.path(), folder).string(),
                                   content(entry.path()));
            }
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<std::string> namesOf(const fs::path& folder)
{
    std::vector<std::string> names;
    for (const auto& [name, bytes] : filesOf(folder)) {
        names.push_back(name);
    }
    return names;
}

const std::vector<std::string> THE_SET = {"data/bubble.png",
                                          "data/cube.mtl",
                                          "data/cube.obj",
                                          "data/cube.png",
                                          "data/dance.txt",
                                          "data/fish0.png",
                                          "data/mocap.txt",
                                          "data/rehearsal.txt",
                                          "data/squid.png",
                                          "data/underwater.jpg",
                                          "fonts/ChalkboardBold.LICENSE.txt",
                                          "fonts/ChalkboardBold.ttf",
                                          "sound/bubbles_sound.ogg",
                                          "sound/magpie_vocal.ogg"};

class MediaProgramTest : public testing::Test {
protected:
    void SetUp() override
    {
        folder = fs::path(testing::TempDir()) / ("kelpix-media-" + std::to_string(getpid()));
        fs::remove_all(folder);
        fs::create_directories(folder);
    }

    void TearDown() override { fs::remove_all(folder); }

    /// Runs the generator and keeps what it prints.
    /// \return its exit status
    int run(const std::string& arguments)
    {
        const std::string command = std::string("'" KELPIX_MEDIA_PROGRAM "' ") + arguments + " >'" +
                                    (folder / "out").string() + "' 2>'" +
                                    (folder / "err").string() + "'";
        const int status = std::system(command.c_str());
        out = content(folder / "out");
        err = content(folder / "err");
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string quoted(const char* name) const
    {
        std::string text = "'";
        text += (folder / name).string();
        return text += '\'';
    }

    fs::path folder;
    std::string out;
    std::string err;
};

TEST_F(MediaProgramTest, MakesTheWholeSetWithALineForEachFile)
{
    ASSERT_EQ(run("--out " + quoted("set") + " --seconds 20 --water 64"), 0) << err;
    EXPECT_EQ(namesOf(folder / "set"), THE_SET);
    EXPECT_THAT(err, IsEmpty());
    for (const std::string& name : THE_SET) {
        EXPECT_THAT(out, HasSubstr(name + ": "));
    }
    EXPECT_EQ(static_cast<std::size_t>(std::count(out.begin(), out.end(), '\n')), THE_SET.size());
}

TEST_F(MediaProgramTest, MakesTheSameBytesTwice)
{
    ASSERT_EQ(run("--out " + quoted("again")), 0) << err;
    const auto files = filesOf(folder / "again");
    ASSERT_EQ(files.size(), THE_SET.size());
    for (const auto& [name, bytes] : files) {
        EXPECT_TRUE(bytes == content(fs::path(KELPIX_MEDIA_DIR) / name)) << name;
    }
}

TEST_F(MediaProgramTest, MakesAnotherSetFromAnotherSeed)
{
    ASSERT_EQ(run("--out " + quoted("other") + " --only bubbles --seed 7"), 0) << err;
    EXPECT_NE(content(folder / "other/sound/bubbles_sound.ogg"),
              content(KELPIX_MEDIA_DIR "/sound/bubbles_sound.ogg"));
}

TEST_F(MediaProgramTest, MakesASingleAssetAsItIsInTheSet)
{
    ASSERT_EQ(run("--only fish --out " + quoted("one")), 0) << err;
    EXPECT_THAT(namesOf(folder / "one"), testing::ElementsAre("data/fish0.png"));
    EXPECT_TRUE(content(folder / "one/data/fish0.png") ==
                content(KELPIX_MEDIA_DIR "/data/fish0.png"));
    EXPECT_EQ(out, "data/fish0.png: 64 x 64\n");
}

TEST_F(MediaProgramTest, ADanceAloneIsAsLongAsTheVoiceOfItsFolder)
{
    // 6.5 s: at 90 records a second 585, and one more for the last moment.
    OggFiles::Tone voice;
    voice.samples = 13 * 22050;
    fs::create_directories(folder / "set/sound");
    const fs::path sound = folder / "set/sound/magpie_vocal.ogg";
    std::ofstream(sound, std::ios::binary) << OggFiles::vorbis(voice);
    ASSERT_EQ(run("--only dance --out " + quoted("set")), 0) << err;
    EXPECT_THAT(out, HasSubstr("data/dance.txt: 586 records\ndata/rehearsal.txt: 585 records\n"));
    ASSERT_EQ(run("--only dance --force --seconds 7.25 --out " + quoted("set")), 0) << err;
    EXPECT_THAT(out, HasSubstr("data/dance.txt: 654 records\n")) << "652.5, and the last";

    voice.samples = 4 * 44100;
    std::ofstream(sound, std::ios::binary) << OggFiles::vorbis(voice);
    EXPECT_EQ(run("--only dance --force --out " + quoted("set")), 1);
    EXPECT_EQ(err, "kelpix-media: the voice lasts 4 s, and a dance 5 to 3600 s\n");
    std::ofstream(sound) << "no sound";
    EXPECT_EQ(run("--only dance --force --out " + quoted("set")), 1);
    EXPECT_THAT(err,
                HasSubstr(sound.string() + " is no Ogg Vorbis file; the scene ends as it starts, "
                                           "with status 255; --seconds N tells one\n"));
}

TEST_F(MediaProgramTest, MakesTheDanceOfATable)
{
    std::ofstream(folder / "table.txt") << "1 0 home # 0.15 to the right, and 0.6 up\n"
                                           "3 0 0.75 0.5\n6 0 home\n6 1 0.5 0.125\n";
    const std::string make = "--dance " + quoted("table.txt") + " --out " + quoted("set");
    ASSERT_EQ(run(make), 0) << err;
    EXPECT_EQ(out, "data/mocap.txt: 2 recordings\ndata/dance.txt: 541 records\n"
                   "data/rehearsal.txt: 540 records\n");
    std::ifstream dance(folder / "set/data/dance.txt");
    std::string line;
    for (int i = 0; i <= 3 * 90; ++i) {
        std::getline(dance, line);
    }
    // Positions count 0.45 of the picture: 1/3, 4/3; figure 1 is halfway, -0.025 and 0.1125.
    EXPECT_THAT(line, testing::MatchesRegex("3\\.0000 0\\.33333 1\\.33333 0 0 0 -?[0-9.]+ "
                                            "-0\\.05556 0\\.25000 0 0 0 [0-9.]+ 0 0 .*"));
    std::ofstream(folder / "table.txt") << "1 0 home\n3 4 0 0\n";
    EXPECT_EQ(run(make), 1);
    EXPECT_EQ(err, "kelpix-media: " + (folder / "table.txt").string() +
                       ":2: the figure is 0, 1 or 2, not \"4\"\n");
    std::ofstream(folder / "table.txt") << "3 0 0.5 0.5\n9.5 0 home\n";
    EXPECT_EQ(run(make + " --seconds 9"), 1);
    EXPECT_EQ(err, "kelpix-media: " + (folder / "table.txt").string() +
                       ": its last time, 9.5, is after the end of the voice, 9 s\n");
    EXPECT_EQ(run(make + " --force --seconds 9.2"), 0) << err;
}

TEST_F(MediaProgramTest, CopiesTheFontWithItsLicense)
{
    EXPECT_THAT(content(KELPIX_MEDIA_DIR "/fonts/ChalkboardBold.LICENSE.txt"),
                HasSubstr("SIL OPEN FONT LICENSE Version 1.1"));
    EXPECT_EQ(content(KELPIX_MEDIA_DIR "/fonts/ChalkboardBold.ttf").substr(0, 4), "OTTO");
}

TEST_F(MediaProgramTest, CopiesAnotherFontWithoutALicense)
{
    std::ofstream(folder / "mine.ttf") << "a font";
    ASSERT_EQ(run("--only font --font " + quoted("mine.ttf") + " --out " + quoted("set")), 0)
        << err;
    EXPECT_THAT(namesOf(folder / "set"), testing::ElementsAre("fonts/ChalkboardBold.ttf"));
    EXPECT_EQ(content(folder / "set/fonts/ChalkboardBold.ttf"), "a font");
}

TEST_F(MediaProgramTest, ReplacesWhatAnotherHasMadeOnlyWhenItIsForced)
{
    const fs::path data = folder / "set/data";
    fs::create_directories(data);
    const auto before = [&] {
        std::ofstream(data / "dance.txt") << "a dance of somebody's own";
        fs::remove(data / "rehearsal.txt");
        fs::create_symlink("nowhere", data / "rehearsal.txt");
        fs::remove(data / "mocap.txt");
    };
    before();
    const std::string make = "--only dance --seconds 20 --out " + quoted("set");
    EXPECT_EQ(run(make), 1);
    EXPECT_EQ(err, "kelpix-media: nothing is written: --force would replace in " +
                       (folder / "set").string() + ": data/dance.txt data/rehearsal.txt\n");
    EXPECT_THAT(out, IsEmpty());
    EXPECT_EQ(content(data / "dance.txt"), "a dance of somebody's own");
    EXPECT_TRUE(fs::is_symlink(data / "rehearsal.txt"));
    EXPECT_FALSE(fs::exists(data / "mocap.txt"));

    // The start of what would be written is something else, too.
    std::ofstream(data / "dance.part.txt") << "from a run that was cut off";
    EXPECT_EQ(run(make + " --force"), 0) << err;
    EXPECT_THAT(namesOf(folder / "set"),
                testing::ElementsAre("data/dance.txt", "data/mocap.txt", "data/rehearsal.txt"));
    const std::string dance = content(data / "dance.txt");
    for (const std::string& other : {dance.substr(0, dance.size() - 1), dance + "\n"}) {
        std::ofstream(data / "dance.txt") << other;
        EXPECT_EQ(run(make), 1);
        EXPECT_THAT(err, testing::EndsWith(": data/dance.txt\n"));
        EXPECT_EQ(content(data / "dance.txt"), other);
    }
}

TEST_F(MediaProgramTest, LeavesFilesOfTheSameContentAsTheyAre)
{
    fs::create_directories(folder / "set/data");
    fs::create_symlink(KELPIX_MEDIA_DIR "/data/fish0.png", folder / "set/data/fish0.png");
    ASSERT_EQ(run("--only fish --out " + quoted("set")), 0) << err;
    EXPECT_EQ(out, "data/fish0.png: 64 x 64\n");
    EXPECT_TRUE(fs::is_symlink(folder / "set/data/fish0.png"));
}

TEST_F(MediaProgramTest, SaysWhatIsWrongWithTheCommandLine)
{
    const std::vector<std::pair<std::string, std::string>> lines = {
        {"", "--out DIR or --check DIR is missing"},
        {"--color red", "unknown option \"--color\""},
        {"set", "--out set makes media there, --check set looks at them"},
        {"--out set reef", "\"reef\" is one word too many"},
        {"--out", "--out needs a value"},
        {"--out set --seed x",
         "--seed takes a whole number from 0 to 18446744073709551615, not \"x\""},
        {"--out set --water 1000", "--water takes a power of two from 64 to 4096, not \"1000\""},
        {"--out set --seconds 4", "--seconds takes a number from 5 to 600, not \"4\""},
        {"--out set --dance t.txt --only fish", "--dance TABLE makes the dance, not --only fish"},
        {"--out set --only=whale", "--only takes one of voice, "},
        {"--check set --seed=1", "--check DIR goes with no other option"},
    };
    for (const auto& [arguments, message] : lines) {
        EXPECT_EQ(run(arguments), 2) << arguments;
        EXPECT_THAT(err, HasSubstr("kelpix-media: " + message)) << arguments;
        EXPECT_THAT(out, IsEmpty()) << arguments;
    }
    EXPECT_FALSE(fs::exists("set"));
}

TEST_F(MediaProgramTest, FailsClearlyWhereItCannotWrite)
{
    std::ofstream(folder / "file") << "not a folder";
    EXPECT_EQ(run("--only fish --out " + quoted("file/set")), 1);
    EXPECT_THAT(err, HasSubstr("kelpix-media: cannot write " +
                               (folder / "file/set/data/fish0.png").string()));
    // A folder that is in the way of a file.
    fs::create_directories(folder / "set/data/fish0.png/x");
    EXPECT_EQ(run("--only fish --out " + quoted("set")), 1);
    EXPECT_THAT(err, HasSubstr("cannot write"));
    EXPECT_THAT(namesOf(folder / "set"), IsEmpty()) << "no partial file stays behind";
}

TEST_F(MediaProgramTest, FailsClearlyWithoutAFont)
{
    EXPECT_EQ(run("--only font --font /nowhere/font.ttf --out " + quoted("set")), 1);
    EXPECT_EQ(err, "kelpix-media: cannot read /nowhere/font.ttf\n");
    EXPECT_THAT(namesOf(folder / "set"), IsEmpty());
}

TEST_F(MediaProgramTest, ExplainsItself)
{
    EXPECT_EQ(run("--help"), 0);
    for (const char* option : {"--out", "--force", "--seed", "--water", "--seconds", "--only",
                               "--font", "--help", "--version"}) {
        EXPECT_THAT(out, HasSubstr(option));
    }
    for (const char* asset :
         {"voice", "water", "bubbles", "dance", "squid", "fish", "bubble", "cube", "font"}) {
        EXPECT_THAT(out, HasSubstr(std::string("\n  ") + asset + " "));
    }
    EXPECT_THAT(err, IsEmpty());
    EXPECT_EQ(run("--version"), 0);
    EXPECT_THAT(out, testing::MatchesRegex("kelpix-media [0-9]+\\.[0-9]+\\.[0-9]+\n"));
    EXPECT_THAT(err, IsEmpty());
}

} // namespace
