#include "GLTest.h"

#include "Program.h"
#include "TempDirectory.h"

#include "Mixer.h"
#include "Stage.h"

#include <cmath>
#include <png.h>

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

class RecordWindowTest : public GLTest {};

TEST_F(RecordWindowTest, APictureShowsWhatTheWindowShows)
{
    const TempDirectory folder;
    const char* leaks = std::getenv("ASAN_OPTIONS");
    Program program({KELPIX_RECORD, "--media", KELPIX_MEDIA, "--png", "picture.png", "--seed", "5",
                     "--at", "5"},
                    std::filesystem::current_path(),
                    {{"ASAN_OPTIONS", std::string(leaks ? leaks : "") + ":detect_leaks=0"}});
    ASSERT_EQ(program.wait(), 0) << program.errors();
    const std::vector<unsigned char> offscreen = readPng("picture.png");

    std::filesystem::current_path(KELPIX_MEDIA);
    std::int64_t samples = 0;
    const int rate = record::loadTrack("sound/magpie_vocal.ogg", samples).rate;
    // The scene's nodes live until the process ends.
    static auto* const stage = new Stage(WIDTH, HEIGHT, 5, {samples, rate});
    for (int step = 0; step <= 200; ++step) {
        stage->update();
        stage->draw();
    }
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
    EXPECT_EQ(different, 0);
}

} // namespace
