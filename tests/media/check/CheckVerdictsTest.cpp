/// Compares what the check says of fonts, images and sounds with what the scene's own readers do
/// with the same files: the inputs of the fuzzers, and damaged copies of them.

#include "CheckFont.h"
#include "CheckPicture.h"
#include "CheckSound.h"
#include "CheckedFolder.h"
#include "FreeType.h"
#include "GLTest.h"
#include "ImageJPEG.h"
#include "ImagePNG.h"
#include "OggSound.h"

#include <algorithm>
#include <random>
#include <sys/wait.h>

/// As in fuzz/Ogg.cpp: libvorbisfile 1.3.7 leaks the headers of some damaged chains.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libvorbis";
}

namespace {

using media::FileReport;
using media::Mark;

/// The inputs of a fuzzer, and of each some copies in which a few bytes differ.
std::vector<std::string> inputsOf(const std::string& target, std::size_t skipped = 0)
{
    constexpr int DAMAGED_COPIES = 8;
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(KELPIX_CORPUS "/" + target)) {
        paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    EXPECT_FALSE(paths.empty());
    std::mt19937 random(1);
    std::vector<std::string> inputs;
    for (const std::filesystem::path& path : paths) {
        std::string bytes = media::contentOf(path);
        bytes.erase(0, std::min(bytes.size(), skipped));
        inputs.push_back(bytes);
        for (int copy = 0; copy < DAMAGED_COPIES && !bytes.empty(); ++copy) {
            std::string damaged = bytes;
            for (int change = 0; change <= copy / 2; ++change) {
                damaged[random() % damaged.size()] = static_cast<char>(random());
            }
            inputs.push_back(damaged);
        }
    }
    return inputs;
}

bool says(const FileReport& report, const std::string& text)
{
    return std::any_of(report.remarks.begin(), report.remarks.end(), [&](const auto& remark) {
        return remark.text.find(text) != std::string::npos;
    });
}

/// Counts how often the readers took an input and how often they refused one: both must occur, or
/// nothing is compared.
struct Verdicts {
    int taken = 0;
    int refused = 0;

    void add(bool isTaken) { ++(isTaken ? taken : refused); }
    ~Verdicts()
    {
        EXPECT_GT(taken, 0);
        EXPECT_GT(refused, 0);
    }
};

class CheckVerdictsTest : public GLTest {
protected:
    CheckedFolder folder;
    Verdicts verdicts;
};

TEST_F(CheckVerdictsTest, AFontStopsTheSceneWhenItsReaderThrows)
{
    constexpr const char* NAME = "fonts/ChalkboardBold.ttf";
    for (const std::string& input : inputsOf("font", 2)) {
        folder.write(NAME, input);
        freetype::font_data font;
        std::string failure;
        try {
            font.init((folder.path() / NAME).c_str(), 12);
        } catch (const std::runtime_error& error) {
            failure = error.what();
        }
        font.clean();
        verdicts.add(failure.empty());
        const FileReport report = media::checkFont(folder.path());
        ASSERT_EQ(report.mark() == Mark::stops, !failure.empty()) << failure << '\n' << input;
    }
}

TEST_F(CheckVerdictsTest, ASpriteIsPaleWhenItsReaderFails)
{
    constexpr const char* NAME = "data/fish0.png";
    for (const std::string& input : inputsOf("png")) {
        folder.write(NAME, input);
        ImagePNG image;
        const bool read = image.read((folder.path() / NAME).c_str()) == 1;
        delete[] image.sourceFile;
        verdicts.add(read);
        const FileReport report = media::checkFish(folder.path(), {});
        ASSERT_EQ(says(report, "every fish is a pale square"), !read) << input;
        ASSERT_EQ(says(report, "garbled pixels"), read && image.c != 4) << input;
    }
}

TEST_F(CheckVerdictsTest, TheWaterIsLostWhenItsReaderFails)
{
    constexpr const char* NAME = "data/underwater.jpg";
    for (const std::string& input : inputsOf("jpeg")) {
        folder.write(NAME, input);
        ImageJPEG image;
        const bool read = image.read((folder.path() / NAME).c_str()) == 1;
        delete[] image.sourceFile;
        verdicts.add(read);
        const FileReport report = media::checkWater(folder.path()).report;
        ASSERT_EQ(says(report, "cannot be decoded"), !read) << input;
        ASSERT_EQ(says(report, "the water is plain gray"), !read && image.buffer == nullptr);
        ASSERT_EQ(says(report, "garbled pixels"), read && image.c != 3) << input;
    }
}

/// Loads a sound in a process of its own, which that may end. \return its exit status
int statusOfLoading(const std::string& path)
{
    const pid_t child = fork();
    if (child == 0) {
        // The child has none of the parent's threads: its exit handlers are not for the child.
        on_exit([](int status, void*) { _exit(status); }, nullptr);
        std::freopen("/dev/null", "w", stderr);
        OggSound sound;
        std::vector<char> track;
        int format = 0;
        unsigned rate = 0;
        sound.loadOGG(path.c_str(), track, format, rate);
        _exit(0);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(CheckVerdictsTest, ASoundStopsTheSceneWhenItsReaderEndsTheProcess)
{
    constexpr const char* NAME = "sound/bubbles_sound.ogg";
    for (const std::string& input : inputsOf("ogg")) {
        folder.write(NAME, input);
        const int status = statusOfLoading((folder.path() / NAME).string());
        ASSERT_TRUE(status == 0 || status == 255) << status;
        verdicts.add(status == 0);
        const FileReport report = media::checkBubbles(folder.path());
        ASSERT_EQ(report.mark() == Mark::stops, status != 0);
    }
}

} // namespace
