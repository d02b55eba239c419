#include "GLTest.h"

#include "Program.h"
#include "TempDirectory.h"

#include "Mixer.h"
#include "Stage.h"

#include <cmath>
#include <png.h>
#include <sstream>

namespace {

/// RGB, rows top-down.
std::vector<unsigned char> readPng(const char* path)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    EXPECT_NE(png_image_begin_read_from_file(&image, path), 0) << image.message;
    image.format = PNG_FORMAT_RGB;
    std::vector<unsigned char> rgb(PNG_IMAGE_SIZE(image));
    png_image_finish_read(&image, nullptr, rgb.data(), 0, nullptr);
    return rgb;
}

class RecordWindowTest : public GLTest {
protected:
    TempDirectory folder;

    /// Runs the program, and plays the same scene here up to the same step.
    /// \return what the program printed
    std::string playTwice(const std::vector<std::string>& options, int lastStep)
    {
        std::vector<std::string> command = {KELPIX_RECORD, "--media", KELPIX_MEDIA, "--seed", "5"};
        command.insert(command.end(), options.begin(), options.end());
        const char* leaks = std::getenv("ASAN_OPTIONS");
        Program program(command, std::filesystem::current_path(),
                        {{"ASAN_OPTIONS", std::string(leaks ? leaks : "") + ":detect_leaks=0"}});
        EXPECT_EQ(program.wait(), 0) << program.errors();

        const std::filesystem::path work = std::filesystem::current_path();
        std::filesystem::current_path(KELPIX_MEDIA);
        std::int64_t samples = 0;
        const int rate = record::loadTrack("sound/magpie_vocal.ogg", samples).rate;
        // The scene's nodes live until the process ends.
        static std::vector<Stage*> stages;
        stage = stages.emplace_back(new Stage(WIDTH, HEIGHT, 5, {samples, rate}));
        for (int step = 0; step <= lastStep; ++step) {
            stage->update();
            stage->draw();
        }
        std::filesystem::current_path(work);
        return program.output();
    }

    Stage* stage = nullptr;
};

TEST_F(RecordWindowTest, TheHashIsThatOfTheScene)
{
    const std::string printed = playTwice({"--hash", "--at", "1"}, 40);
    const StateHash hash = stage->hash();
    std::istringstream lines(printed);
    std::string name;
    int frame = 0;
    ASSERT_TRUE(lines >> name >> frame) << printed;
    EXPECT_EQ(name, "frame");
    EXPECT_EQ(frame, 41);
    std::uint64_t value = 0;
    lines >> std::hex;
    for (const StateHash::Part& part : hash.parts()) {
        ASSERT_TRUE(lines >> name >> value) << printed;
        EXPECT_EQ(name, part.name);
        EXPECT_EQ(value, part.value) << name;
    }
    ASSERT_TRUE(lines >> name >> value) << printed;
    EXPECT_EQ(name, "whole");
    EXPECT_EQ(value, hash.whole());
    EXPECT_FALSE(lines >> name) << printed;
}

TEST_F(RecordWindowTest, APictureShowsWhatTheWindowShows)
{
    playTwice({"--png", "picture.png", "--at", "5"}, 200);
    const std::vector<unsigned char> offscreen = readPng("picture.png");
    const std::vector<unsigned char> window = pixels();

    ASSERT_EQ(offscreen.size(), std::size_t{3} * WIDTH * HEIGHT);
    int different = 0;
    for (int y = 0; y < HEIGHT; ++y) {
        for (int x = 0; x < WIDTH; ++x) {
            for (int c = 0; c < 3; ++c) {
                const auto top = static_cast<std::size_t>(3 * (y * WIDTH + x) + c);
                const auto bottom =
                    static_cast<std::size_t>(4 * ((HEIGHT - 1 - y) * WIDTH + x) + c);
                different += std::abs(offscreen[top] - window[bottom]) > 2 ? 1 : 0;
            }
        }
    }
    // The two contexts may give a pixel on a shape's edge to different sides.
    EXPECT_LE(different, 3 * 10);
}

} // namespace
