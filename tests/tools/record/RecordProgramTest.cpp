#include "OggFiles.h"
#include "Program.h"
#include "TempDirectory.h"

#include <cmath>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;

std::string content(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The program, run in a folder of its own with the media of the build.
class RecordProgramTest : public testing::Test {
protected:
    TempDirectory folder;
    fs::path work = fs::current_path();
    std::string media = KELPIX_MEDIA;
    Program::Environment environment;
    std::string out;
    std::string err;

    void SetUp() override
    {
        // The scene's objects are given back by the end of the process.
        const char* options = std::getenv("ASAN_OPTIONS");
        environment["ASAN_OPTIONS"] =
            std::string(options ? options : "") + ":detect_leaks=0:verify_asan_link_order=0";
        fs::create_directory("work");
        work = fs::current_path() / "work";
    }

    /// Runs a command in the work folder. \return its exit status
    int runCommand(const std::vector<std::string>& command)
    {
        Program program(command, work, environment);
        const int status = program.wait();
        out = program.output();
        err = program.errors();
        return status;
    }

    /// Runs the program. \param arguments  separated by blanks, --media apart
    int run(const std::string& arguments)
    {
        std::vector<std::string> command = {KELPIX_RECORD, "--media", media};
        std::istringstream words(arguments);
        for (std::string word; words >> word;) {
            command.push_back(word);
        }
        return runCommand(command);
    }

    std::string file(const std::string& name) const { return content(work / name); }

    void write(const std::string& name, const std::string& text) const
    {
        TempDirectory::write((work / name).string(), text);
    }

    std::vector<std::string> filesLeft() const
    {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(work)) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    /// What ffprobe says of a film: one line for each stream, and the whole length.
    std::string probe(const std::string& name, const std::string& entries)
    {
        return printedBy({"ffprobe", "-v", "error", "-count_frames", "-show_entries", entries,
                          "-of", "compact=p=0:nk=1", (work / name).string()});
    }

    /// The frames of a film as RGB bytes, one after the other.
    std::vector<std::string> framesOf(const std::string& name, std::size_t size)
    {
        const std::string bytes =
            converted({"-i", name, "-f", "rawvideo", "-pix_fmt", "rgb24"}, "frames");
        std::vector<std::string> frames;
        for (std::size_t at = 0; at < bytes.size(); at += 3 * size * size) {
            frames.push_back(bytes.substr(at, 3 * size * size));
        }
        return frames;
    }

    /// What ffmpeg makes of the arguments.
    std::string converted(const std::vector<std::string>& arguments, const std::string& to)
    {
        std::vector<std::string> command = {"ffmpeg", "-nostdin", "-v", "error", "-y"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        command.push_back(to);
        EXPECT_EQ(runCommand(command), 0) << err;
        const std::string bytes = file(to);
        fs::remove(work / to);
        return bytes;
    }

    /// A copy of the media without what stands in \p names: that is for the test to make.
    void copyMediaWithout(const std::vector<std::string>& names)
    {
        const fs::path copy = fs::current_path() / "media";
        for (const char* part : {"data", "sound", "fonts"}) {
            fs::create_directories(copy / part);
            for (const auto& entry : fs::directory_iterator(fs::path(KELPIX_MEDIA) / part)) {
                const std::string name = std::string(part) + "/" + entry.path().filename().string();
                if (std::find(names.begin(), names.end(), name) == names.end()) {
                    fs::create_symlink(entry.path(), copy / name);
                }
            }
        }
        media = copy.string();
    }

    /// Puts a script in the place of ffmpeg.
    void installEncoder(const std::string& script)
    {
        fs::create_directory("bin");
        TempDirectory::write("bin/ffmpeg", "#!/bin/sh\n" + script);
        fs::permissions("bin/ffmpeg", fs::perms::owner_all);
        environment["PATH"] = (fs::current_path() / "bin").string() + ":" + std::getenv("PATH");
    }
};

/// Films whose frames come out as they were drawn.
const std::string LOSSLESS = " -- -c:v rawvideo -pix_fmt rgb24 -c:a pcm_s16le";

TEST_F(RecordProgramTest, TheSameOptionsGiveTheSamePicture)
{
    ASSERT_EQ(run("--png a.png --at 4 --size 160x120"), 0) << err;
    EXPECT_EQ(out, "a.png: 160 x 120\n");
    ASSERT_EQ(run("--png b.png --at 4 --size 160x120 --seed 1"), 0) << err;
    ASSERT_EQ(run("--png c.png --at 4 --size 160x120 --seed 2"), 0) << err;
    EXPECT_TRUE(file("a.png") == file("b.png"));
    EXPECT_FALSE(file("a.png") == file("c.png"));
    EXPECT_THAT(filesLeft(), ElementsAre("a.png", "b.png", "c.png"));
}

TEST_F(RecordProgramTest, AFilmHasTheFramesTheRateAndTheSoundAskedFor)
{
    ASSERT_EQ(run("--out film.mp4 --seconds 1 --size 160x160"), 0) << err;
    EXPECT_THAT(out, MatchesRegex("film.mp4: 1 s of 160 x 160, made in [0-9.]+ s\n"));
    EXPECT_EQ(
        probe("film.mp4", "stream=codec_name,width,height,pix_fmt,r_frame_rate,nb_read_"
                          "frames:stream_tags=:stream_disposition="),
        "h264|160|160|yuv420p|40/1|40\naac|0/0|" +
            probe("film.mp4", "stream=nb_read_frames:stream_tags=:stream_disposition=").substr(3));
    EXPECT_NEAR(std::stod(probe("film.mp4", "format=duration")), 1.0, 0.03);
    EXPECT_THAT(filesLeft(), ElementsAre("film.mp4"));
}

TEST_F(RecordProgramTest, TheNameTellsTheKindOfFilm)
{
    const std::string options = " --seconds 0.1 --size 64x64";
    ASSERT_EQ(run("--out film.webm" + options), 0) << err;
    EXPECT_THAT(probe("film.webm", "stream=codec_name,pix_fmt:stream_tags=:stream_disposition="),
                HasSubstr("vp9|yuv420p"));
    ASSERT_EQ(run("--out film.gif" + options), 0) << err;
    EXPECT_EQ(probe("film.gif", "stream=codec_name:stream_tags=:stream_disposition="), "gif");
    ASSERT_EQ(run("--out film:1.mkv" + options), 0) << err;
    EXPECT_THAT(filesLeft(), ElementsAre("film.gif", "film.webm", "film:1.mkv"));
}

TEST_F(RecordProgramTest, APictureIsTheFilmsFrameOfThatTime)
{
    ASSERT_EQ(run("--out film.nut --at 4 --seconds 0.1 --fps 60 --size 64x64" + LOSSLESS), 0)
        << err;
    const std::vector<std::string> frames = framesOf("film.nut", 64);
    ASSERT_EQ(frames.size(), 6U);
    EXPECT_TRUE(frames[0] == frames[1]) << "both show step 160";
    EXPECT_FALSE(frames[1] == frames[2]);
    EXPECT_TRUE(frames[3] == frames[4]) << "both show step 162";
    for (const auto& [time, frame] :
         std::vector<std::pair<std::string, std::size_t>>{{"4", 0}, {"4.05", 3}, {"4.0833", 5}}) {
        ASSERT_EQ(run("--force --png picture.png --size 64x64 --at " + time), 0) << err;
        const std::string picture =
            converted({"-i", "picture.png", "-f", "rawvideo", "-pix_fmt", "rgb24"}, "picture");
        EXPECT_TRUE(picture == frames[frame]) << time;
    }
}

TEST_F(RecordProgramTest, ASlowFilmShowsTheSameScene)
{
    ASSERT_EQ(run("--out fast.nut --seconds 1 --size 64x64" + LOSSLESS), 0) << err;
    ASSERT_EQ(run("--out slow.nut --seconds 1 --fps 8 --size 64x64" + LOSSLESS), 0) << err;
    const std::vector<std::string> fast = framesOf("fast.nut", 64);
    const std::vector<std::string> slow = framesOf("slow.nut", 64);
    ASSERT_EQ(fast.size(), 40U);
    ASSERT_EQ(slow.size(), 8U);
    for (std::size_t i = 0; i < slow.size(); ++i) {
        EXPECT_TRUE(slow[i] == fast[5 * i]) << i;
    }
}

TEST_F(RecordProgramTest, TheSoundIsAsLoudAsInTheProgram)
{
    copyMediaWithout({"sound/magpie_vocal.ogg", "sound/bubbles_sound.ogg"});
    OggFiles::Tone voice;
    voice.samples = 22050;
    voice.pitch = 300;
    TempDirectory::write("media/sound/magpie_vocal.ogg", OggFiles::vorbis(voice));
    OggFiles::Tone bubbles;
    bubbles.channels = 2;
    bubbles.rate = 22050;
    bubbles.pitch = 700;
    TempDirectory::write("media/sound/bubbles_sound.ogg", OggFiles::vorbis(bubbles));
    ASSERT_EQ(run("--out film.nut --seconds 1 --size 64x64" + LOSSLESS), 0) << err;

    const std::string bytes = converted({"-i", "film.nut", "-f", "s16le"}, "sound");
    ASSERT_EQ(bytes.size(), 44100U * 4);
    const auto loudness = [&](std::size_t from, std::size_t channel) {
        double sum = 0;
        for (std::size_t i = from; i < from + 11025; ++i) {
            std::int16_t sample = 0;
            std::memcpy(&sample, &bytes[4 * i + 2 * channel], 2);
            sum += static_cast<double>(sample) * sample;
        }
        return std::sqrt(sum / 11025);
    };
    // Sines of half the full range: 11585 effectively. The voice has one channel (0.6).
    const double alone = 0.2 * 11585;
    const double both = std::hypot(0.6 * 11585, alone);
    for (const std::size_t channel : {0, 1}) {
        EXPECT_NEAR(loudness(5000, channel), both, 0.03 * both);
        EXPECT_NEAR(loudness(30000, channel), alone, 0.03 * alone) << "after the voice's end";
    }
}

TEST_F(RecordProgramTest, AScriptTouchesTheScene)
{
    write("script.txt", "0.05 wheel up # closer\n0.1 drag v 0 0 30 0 0.025\n0.15 key q\n");
    ASSERT_EQ(run("--out film.nut --seconds 1 --size 64x64 --script script.txt" + LOSSLESS), 0)
        << err;
    ASSERT_EQ(run("--out still.nut --seconds 0.15 --size 64x64" + LOSSLESS), 0) << err;
    const std::vector<std::string> frames = framesOf("film.nut", 64);
    const std::vector<std::string> still = framesOf("still.nut", 64);
    ASSERT_EQ(frames.size(), 6U) << "q ends the film";
    EXPECT_TRUE(frames[0] == still[0]);
    EXPECT_TRUE(frames[1] == still[1]);
    EXPECT_FALSE(frames[2] == still[2]);
}

TEST_F(RecordProgramTest, AScriptThatMakesNoSenseIsRefusedBeforeAnythingIsDone)
{
    write("script.txt", "1 key v\n\n2 hop\n");
    EXPECT_EQ(run("--out film.mp4 --script script.txt"), 2);
    EXPECT_EQ(err, "kelpix-record: script.txt:3: \"hop\" is none of move, click, wheel, key, "
                   "drag and glide\n");
    EXPECT_EQ(run("--out film.mp4 --script missing.txt"), 2);
    EXPECT_EQ(err, "kelpix-record: cannot read missing.txt: No such file or directory\n");
    write("script.txt", "1 key q");
    EXPECT_EQ(run("--png picture.png --at 1 --script script.txt"), 2);
    EXPECT_EQ(err, "kelpix-record: the script ends the scene before the time of --at\n");
    EXPECT_EQ(out, "");
    EXPECT_THAT(filesLeft(), ElementsAre("script.txt"));
}

TEST_F(RecordProgramTest, ExplainsItself)
{
    EXPECT_EQ(runCommand({KELPIX_RECORD, "-h"}), 0);
    EXPECT_THAT(out, testing::StartsWith("usage: kelpix-record [--out] FILM"));
    EXPECT_EQ(runCommand({KELPIX_RECORD, "--version"}), 0);
    EXPECT_THAT(out, MatchesRegex("kelpix-record [0-9]+\\.[0-9]+\\.[0-9]+\n"));
    EXPECT_EQ(err, "");
}

TEST_F(RecordProgramTest, RefusesABadOption)
{
    EXPECT_EQ(run("--out film.mp4 --fps fast"), 2);
    EXPECT_EQ(err, "kelpix-record: --fps takes a whole number from 1 to 1000, not \"fast\"\n"
                   "kelpix-record --help lists the options.\n");
    EXPECT_EQ(run("--png x.jpg"), 2);
    EXPECT_EQ(err, "kelpix-record: --png takes a name that ends in .png, not \"x.jpg\"\n"
                   "kelpix-record --help lists the options.\n");
    EXPECT_EQ(run("--out film.nonsense"), 2);
    EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 2) << err;
    EXPECT_THAT(filesLeft(), IsEmpty());
    EXPECT_EQ(runCommand({KELPIX_RECORD}), 2);
    EXPECT_EQ(err, "kelpix-record: --out FILE, --live KIND, --png FILE, --sheet FILE, --hash or "
                   "--flashes is missing\n"
                   "kelpix-record --help lists the options.\n");
}

TEST_F(RecordProgramTest, SaysThatThereIsNoEncoder)
{
    environment["PATH"] = "/nowhere";
    EXPECT_EQ(run("--out film.mp4 --seconds 0.1 --size 64x64"), 1);
    EXPECT_EQ(err, "kelpix-record: a film needs ffmpeg: install Debian's package ffmpeg\n");
    EXPECT_THAT(filesLeft(), IsEmpty());
    EXPECT_EQ(run("--png picture.png --size 64x64"), 0) << "a picture needs none";
}

TEST_F(RecordProgramTest, PassesOnWhatTheEncoderSays)
{
    EXPECT_EQ(run("--out film.mp4 --seconds 10 --size 64x64 -- -c:v nonsense"), 1);
    EXPECT_THAT(err, HasSubstr("Unknown encoder 'nonsense'"));
    EXPECT_THAT(err, EndsWith("kelpix-record: no film: ffmpeg ended with status 1\n"));
    EXPECT_THAT(filesLeft(), IsEmpty());
}

TEST_F(RecordProgramTest, TheEncodersOptionsMayMakeTheFilmShorter)
{
    ASSERT_EQ(run("--out film.mp4 --seconds 600 --size 64x64 -- -t 0.2"), 0) << err;
    EXPECT_EQ(probe("film.mp4", "stream=nb_read_frames:stream_tags=:stream_disposition=").front(),
              '8');
}

TEST_F(RecordProgramTest, SaysWhereItCannotWrite)
{
    fs::create_directory(work / "film.mp4");
    EXPECT_EQ(run("--out film.mp4"), 1);
    EXPECT_EQ(err,
              "kelpix-record: cannot write " + (work / "film.mp4").string() + ": Is a directory\n");
    EXPECT_EQ(run("--png nowhere/picture.png --at 30000"), 1);
    EXPECT_EQ(err, "kelpix-record: the dance is over by then: the voice lasts 120 s\n"
                   "kelpix-record: cannot write " +
                       (work / "nowhere/picture.png").string() + ": No such file or directory\n");
    EXPECT_THAT(filesLeft(), ElementsAre("film.mp4"));
}

TEST_F(RecordProgramTest, ASheetShowsTheScenesPicturesOfFiveMoments)
{
    copyMediaWithout({"sound/magpie_vocal.ogg"});
    OggFiles::Tone voice;
    voice.samples = 2 * 44100;
    TempDirectory::write("media/sound/magpie_vocal.ogg", OggFiles::vorbis(voice));
    ASSERT_EQ(run("--sheet sheet.png --size 64x48"), 0) << err;
    EXPECT_EQ(out, "sheet.png: the scene at 0.2, 0.6, 1.0, 1.4 and 1.8 s\n");
    EXPECT_THAT(filesLeft(), ElementsAre("sheet.png"));
    const auto pixelsOf = [&](const std::string& name, const std::string& left) {
        return converted(
            {"-i", name, "-vf", "crop=64:48:" + left + ":0", "-f", "rawvideo", "-pix_fmt", "rgb24"},
            "pixels");
    };
    // 64 pixels and a gap of 2.
    const std::vector<std::pair<std::string, std::string>> moments = {{"0.2", "0"}, {"1.8", "264"}};
    for (const auto& [at, left] : moments) {
        ASSERT_EQ(run("--force --png picture.png --size 64x48 --at " + at), 0) << err;
        EXPECT_TRUE(pixelsOf("sheet.png", left) == pixelsOf("picture.png", "0")) << at;
        EXPECT_THAT(err, Not(HasSubstr("the dance is over")));
    }
    ASSERT_EQ(run("late.png --size 64x48 --at 2"), 0) << err;
    EXPECT_THAT(err, HasSubstr("kelpix-record: the dance is over by then: the voice lasts 2 s\n"));
    EXPECT_EQ(out, "late.png: 64 x 48\n");
}

TEST_F(RecordProgramTest, ReplacesAFileOnlyWhenItIsForced)
{
    write("film.mp4", "somebody's film");
    fs::create_symlink("nowhere", work / "picture.png");
    for (const std::string name : {"film.mp4", "picture.png"}) {
        const std::string option = name == "film.mp4" ? "--out " : "--png ";
        EXPECT_EQ(run(option + name + " --size 64x64 --seconds 0.1"), 1);
        EXPECT_EQ(err, "kelpix-record: " + (work / name).string() +
                           " is there already; --force replaces it\n");
    }
    EXPECT_EQ(file("film.mp4"), "somebody's film");
    EXPECT_THAT(filesLeft(), ElementsAre("film.mp4", "picture.png"));
    EXPECT_EQ(run("--force --png picture.png --size 64x64"), 0) << err;
    EXPECT_THAT(file("picture.png"), HasSubstr("PNG"));
}

TEST_F(RecordProgramTest, LeavesNothingOnAFullDisk)
{
    // A limit to the size of files stands in for the disk's end.
    const std::string limited = "trap '' XFSZ; ulimit -f 16; exec \"$0\" \"$@\"";
    EXPECT_EQ(runCommand({"sh", "-c", limited, KELPIX_RECORD, "--media", media, "--out", "film.nut",
                          "--seconds", "1", "--size", "64x64", "--", "-c:v", "rawvideo"}),
              1);
    EXPECT_THAT(err, HasSubstr("File too large"));
    EXPECT_THAT(err, HasSubstr("kelpix-record: no film: ffmpeg ended with status 1"));
    EXPECT_THAT(filesLeft(), IsEmpty());
    EXPECT_EQ(
        runCommand({"sh", "-c", limited, KELPIX_RECORD, "--media", media, "--png", "picture.png"}),
        1);
    EXPECT_THAT(err, EndsWith("kelpix-record: cannot write " + (work / "picture.png").string() +
                              ": File too large\n"));
    EXPECT_THAT(filesLeft(), IsEmpty());
}

TEST_F(RecordProgramTest, TellsHowMuchOfTheFilmTheEncoderHasTaken)
{
    const std::string half = "echo frame=20 >&4; echo progress=continue >&4\n"
                             "for last; do :; done; cat >\"${last#file:}\"\n";
    installEncoder(half);
    ASSERT_EQ(run("--out film.mp4 --seconds 1 --size 64x64"), 0) << err;
    EXPECT_THAT(err, MatchesRegex("50 %, [0-9:]+ left\n100 %, 0:00 left\n"));
    fs::remove(work / "film.mp4");
    installEncoder(half + "exit 3\n");
    EXPECT_EQ(run("--out film.mp4 --seconds 1 --size 64x64"), 1);
    EXPECT_THAT(err, MatchesRegex("50 %, [0-9:]+ left\n"
                                  "kelpix-record: no film: ffmpeg ended with status 3\n"));
}

TEST_F(RecordProgramTest, TheFilmIsDoneWhenTheEncoderIs)
{
    ASSERT_EQ(run("--out film.mp4 --seconds 1 --size 64x64"), 0);
    EXPECT_THAT(err, EndsWith("100 %, 0:00 left\n"));
    EXPECT_EQ(err.find("100 %"), err.rfind("100 %"));
}

TEST_F(RecordProgramTest, ARecordingThatIsNoneMakesNoFilm)
{
    copyMediaWithout({"data/mocap.txt"});
    TempDirectory::write("media/data/mocap.txt", "nothing");
    EXPECT_EQ(run("--out film.mp4"), 1);
    EXPECT_THAT(err, HasSubstr("No MOCAP specified!\n"));
    EXPECT_THAT(filesLeft(), IsEmpty());
    // The name of a recording may hold commands for the terminal.
    TempDirectory::write("media/data/mocap.txt", "MOCAP 1 3 a\x1b[2Jb");
    EXPECT_EQ(run("--out film.mp4"), 1);
    EXPECT_THAT(err, HasSubstr("Loading mocap file 0, a\\x1b[2Jb\n"));
}

TEST_F(RecordProgramTest, AMissingSoundMakesNoFilm)
{
    copyMediaWithout({"sound/bubbles_sound.ogg"});
    EXPECT_EQ(run("--out film.mp4"), 1);
    EXPECT_THAT(err,
                HasSubstr("kelpix-record: missing in " + media + ": sound/bubbles_sound.ogg\n"));
    EXPECT_THAT(err, HasSubstr("Cannot open sound/bubbles_sound.ogg for reading...\n"));
    EXPECT_THAT(filesLeft(), IsEmpty());
}

TEST_F(RecordProgramTest, AFilmInWhoseMiddleTheSceneEndsIsNotKept)
{
    // With a single recording the figures have no record left at the end of the voice.
    copyMediaWithout({"data/mocap.txt", "sound/magpie_vocal.ogg"});
    OggFiles::Tone voice;
    voice.samples = 11025;
    TempDirectory::write("media/sound/magpie_vocal.ogg", OggFiles::vorbis(voice));
    std::string records;
    for (int word = 0; word < 3 * 25; ++word) {
        records += "0.5 ";
    }
    TempDirectory::write("media/data/mocap.txt", "MOCAP 1 3 data/short.txt");
    TempDirectory::write("media/data/short.txt", records);
    EXPECT_EQ(run("--out film.mp4 --size 64x64 --seconds 1"), 1);
    EXPECT_THAT(filesLeft(), IsEmpty());
    EXPECT_THAT(err, Not(HasSubstr("ffmpeg")));
}

TEST_F(RecordProgramTest, AMissingFontMakesNoFilm)
{
    copyMediaWithout({"fonts/ChalkboardBold.ttf"});
    EXPECT_EQ(run("--out film.mp4"), 1);
    EXPECT_THAT(err, HasSubstr("kelpix-record: FT_New_Face failed"));
    EXPECT_THAT(filesLeft(), IsEmpty());
}

TEST_F(RecordProgramTest, PlaysTheFolderItIsStartedIn)
{
    work = KELPIX_MEDIA;
    const fs::path picture = fs::current_path() / "picture.png";
    EXPECT_EQ(runCommand({KELPIX_RECORD, "--size", "64x64", "--png", picture.string()}), 0) << err;
    EXPECT_TRUE(fs::exists(picture));
}

TEST_F(RecordProgramTest, SaysThatThereAreNoMedia)
{
    media = "nowhere";
    EXPECT_EQ(run("--out film.mp4"), 1);
    EXPECT_THAT(err, testing::StartsWith("kelpix-record: no media in nowhere: No such file or "
                                         "directory; "));
}

TEST_F(RecordProgramTest, EndsWhenItIsInterruptedAndLeavesNothing)
{
    installEncoder("kill -INT $PPID\nexec cat >/dev/null\n");
    EXPECT_EQ(run("--out film.mp4 --size 64x64 --seconds 36000"), 130);
    EXPECT_THAT(filesLeft(), IsEmpty());
    installEncoder("cat >/dev/null\nkill -INT $PPID\nexec sleep 1000\n");
    EXPECT_EQ(run("--out film.mp4 --size 64x64 --seconds 0.1"), 130) << "with all frames drawn";
    EXPECT_THAT(filesLeft(), IsEmpty());
}

TEST_F(RecordProgramTest, WorksWithoutStandardStreams)
{
    EXPECT_EQ(runCommand({"sh", "-c", "exec \"$0\" \"$@\" <&- >&- 2>&-", KELPIX_RECORD, "--media",
                          media, "--out", "film.mp4", "--seconds", "0.1", "--size", "64x64"}),
              0);
    EXPECT_THAT(filesLeft(), ElementsAre("film.mp4"));
}

TEST_F(RecordProgramTest, NeedsNeitherDisplayNorSoundDevice)
{
    environment["DISPLAY"] = std::nullopt;
    environment["ALSOFT_DRIVERS"] = "nothing";
    EXPECT_EQ(run("--png picture.png --size 64x64"), 0) << err;
}

} // namespace
