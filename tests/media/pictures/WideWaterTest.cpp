#include "CheckPicture.h"
#include "ReadPicture.h"
#include "Water.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

constexpr int SIZE = 256;

/// A folder with the water for wide windows, small, which goes with this object.
class WideFolder {
public:
    WideFolder()
        : folder(std::filesystem::path(testing::TempDir()) /
                 ("kelpix-wide-" + std::to_string(getpid())))
    {
        media::Request request;
        request.waterSize = SIZE;
        request.wide = true;
        const media::File file = media::makeWater(request).at(0);
        std::filesystem::create_directories((folder / file.name).parent_path());
        std::ofstream(folder / file.name, std::ios::binary) << file.bytes;
        water = readJpeg(folder / file.name);
    }
    WideFolder(const WideFolder&) = delete;
    WideFolder& operator=(const WideFolder&) = delete;
    ~WideFolder() { std::filesystem::remove_all(folder); }

    std::filesystem::path folder;
    Picture water;
};

const WideFolder& wide()
{
    static const WideFolder made;
    return made;
}

const Picture& wideWater()
{
    return wide().water;
}

/// The mean of a channel over a part of the picture, in shares of it.
double mean(int channel, double x0, double y0, double x1, double y1)
{
    double sum = 0;
    int count = 0;
    for (int y = static_cast<int>(y0 * SIZE); y < static_cast<int>(y1 * SIZE); ++y) {
        for (int x = static_cast<int>(x0 * SIZE); x < static_cast<int>(x1 * SIZE); ++x) {
            sum += wideWater().at(x, y, channel);
            ++count;
        }
    }
    return sum / count;
}

// A window of 16 to 9 that is zoomed in by three steps shows x of 0.062 to 0.938, and y of 0.254 to
// 0.746, from the top as well.

TEST(WideWaterTest, FillsTheBandThatTheWindowShows)
{
    const double surface = mean(1, 0.3, 0.26, 0.7, 0.30);
    const double deep = mean(1, 0.4, 0.55, 0.6, 0.62);
    const double ground = mean(1, 0.3, 0.70, 0.7, 0.74);
    EXPECT_GT(surface, 190);
    EXPECT_GT(surface, 1.3 * deep);
    EXPECT_GT(ground, 1.3 * deep);
    for (double x = 0.07; x < 0.93; x += 0.05) {
        EXPECT_GT(mean(1, x, 0.27, x + 0.03, 0.73), 110) << x;
    }
}

TEST(WideWaterTest, IsTheSurroundAboveAndBelow)
{
    for (const double y : {0.0, 0.1, 0.18, 0.81, 0.9}) {
        EXPECT_NEAR(mean(0, 0, y, 1, y + 0.01), 10, 4) << y;
        EXPECT_NEAR(mean(1, 0, y, 1, y + 0.01), 51, 4) << y;
        EXPECT_NEAR(mean(2, 0, y, 1, y + 0.01), 77, 4) << y;
    }
}

TEST(WideWaterTest, HasKelpAtBothEndsOfTheBandAndNoneBeyond)
{
    const auto leaves = [](double x0, double x1) {
        int green = 0;
        for (int y = SIZE * 3 / 10; y < SIZE * 62 / 100; ++y) {
            for (int x = static_cast<int>(x0 * SIZE); x < static_cast<int>(x1 * SIZE); ++x) {
                green += wideWater().at(x, y, 1) > wideWater().at(x, y, 2) + 20 ? 1 : 0;
            }
        }
        return green;
    };
    EXPECT_EQ(leaves(0, 0.055), 0);
    EXPECT_GT(leaves(0.06, 0.18), 300);
    EXPECT_EQ(leaves(0.4, 0.6), 0);
    EXPECT_GT(leaves(0.82, 0.94), 300);
    EXPECT_EQ(leaves(0.945, 1), 0);
}

TEST(WideWaterTest, IsFineForTheCheck)
{
    // More than a third of the picture are dark, but no window shows them.
    EXPECT_EQ(media::checkWater(wide().folder).report.mark(), media::Mark::ok);
}

} // namespace
