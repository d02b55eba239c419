#include "CheckPicture.h"

#include "Check.h"
#include "CheckContrast.h"
#include "CheckedFolder.h"
#include "ImageFiles.h"

#include <cmath>
#include <png.h>
#include <sys/stat.h>

namespace {

using media::FileReport;
using media::Mark;
using testing::AllOf;
using testing::Contains;
using testing::Field;

/// A gray picture of three channels.
Picture plain(std::size_t width, std::size_t height, unsigned char gray)
{
    return {width, height, 3, Bytes(width * height * 3, gray)};
}

class CheckPictureTest : public testing::Test {
protected:
    void putJpeg(const Picture& picture) const
    {
        const TempPath path(".jpg");
        writeJpeg(path, picture);
        put("data/underwater.jpg", path.read());
    }

    void putPng(const std::string& name, const Picture& picture) const
    {
        const TempPath path(".png");
        writePng(path, picture);
        put(name, path.read());
    }

    void putPng(const std::string& name, int colorType, int bits, std::size_t rowBytes) const
    {
        const TempPath path(".png");
        writePng(path, 64, 64, colorType, bits, Bytes(rowBytes * 64));
        put(name, path.read());
    }

    void put(const std::string& name, const Bytes& bytes) const
    {
        folder.write(name, {bytes.begin(), bytes.end()});
    }

    FileReport checkWater() const { return media::checkWater(folder.path()).report; }

    FileReport checkFish() const
    {
        return media::checkFish(folder.path(), media::checkWater(folder.path()).colors);
    }

    FileReport checkBubble() const
    {
        return media::checkBubble(folder.path(), media::checkWater(folder.path()).colors);
    }

    CheckedFolder folder;
};

/// A disc in the middle of a picture, bright and solid, in a transparent surround of one color.
Picture disc(std::size_t size, double radius, unsigned char surround = 200)
{
    Picture picture{size, size, 4, {}};
    const double middle = static_cast<double>(size) / 2 - 0.5;
    for (std::size_t y = 0; y < size; ++y) {
        for (std::size_t x = 0; x < size; ++x) {
            const bool inside = std::hypot(static_cast<double>(x) - middle,
                                           static_cast<double>(y) - middle) < radius;
            const unsigned char color = inside ? 200 : surround;
            const unsigned char alpha = inside ? 255 : 0;
            for (const unsigned char byte : {color, color, color, alpha}) {
                picture.bytes.push_back(byte);
            }
        }
    }
    return picture;
}

TEST_F(CheckPictureTest, TheSetIsFine)
{
    EXPECT_THAT(checkWater(), IsFine());
    EXPECT_THAT(checkFish(), IsFine());
    EXPECT_THAT(checkBubble(), IsFine());
    EXPECT_EQ(checkFish().summary, "64 x 64, RGBA");
}

TEST_F(CheckPictureTest, SaysWhichPicturesAreMissingAndWhatIsSeenInstead)
{
    folder.remove("data/underwater.jpg");
    folder.remove("data/fish0.png");
    folder.remove("data/bubble.png");
    EXPECT_THAT(checkWater(), Says(Mark::wrong, "is missing; the water is plain"));
    EXPECT_THAT(checkFish(), Says(Mark::wrong, "is missing; every fish is a pale"));
    EXPECT_THAT(checkBubble(), Says(Mark::wrong, "is missing; every bubble is a"));
}

TEST_F(CheckPictureTest, FoldersAndPipesAreNoPictures)
{
    folder.makeFolder("data/underwater.jpg");
    folder.remove("data/fish0.png");
    ASSERT_EQ(mkfifo((folder.path() / "data/fish0.png").c_str(), 0600), 0);
    EXPECT_THAT(checkWater(), Says(Mark::wrong, "is a folder"));
    EXPECT_THAT(checkFish(), Says(Mark::wrong, "is no regular file"));
}

TEST_F(CheckPictureTest, AJpegOfOtherThanThreeComponentsIsGarbled)
{
    putJpeg(gradient(64, 64, 1));
    EXPECT_THAT(checkWater(), Says(Mark::wrong, "is gray: the scene takes it for RGB"));
    putJpeg(gradient(64, 64, 4));
    EXPECT_THAT(checkWater(), Says(Mark::wrong, "is CMYK"));
    putJpeg(plain(64, 64, 200));
    EXPECT_THAT(checkWater(), IsFine());
}

TEST_F(CheckPictureTest, HintsAtWaterThatIsDarkOnceItIsHalved)
{
    putJpeg(plain(64, 64, 150));
    EXPECT_THAT(checkWater(), IsFine());
    putJpeg(plain(64, 64, 130));
    EXPECT_THAT(checkWater(), Says(Mark::hint, "is dark: the scene halves it, to a mean brightness "
                                               "of 65 of 255; paint it lighter"));
    // What a wide window shows, zoomed in by three steps: rows 17 to 47 of 64, columns 4 to 60.
    Picture band = plain(64, 64, 20);
    std::fill_n(band.bytes.begin() + 16 * 64 * 3, 32 * 64 * 3, static_cast<unsigned char>(200));
    putJpeg(band);
    EXPECT_THAT(checkWater(), IsFine());
    // Green counts as 0.7152.
    Picture green = plain(64, 64, 0);
    for (std::size_t i = 1; i < green.bytes.size(); i += 3) {
        green.bytes[i] = 180;
    }
    putJpeg(green);
    EXPECT_THAT(checkWater(), Says(Mark::hint, "of 64 of 255"));
}

TEST_F(CheckPictureTest, HintsAtSizesThatAreNotForEveryCard)
{
    putJpeg(plain(96, 96, 200));
    EXPECT_THAT(checkWater(), Says(Mark::hint, "is 96 x 96: sizes that are no powers"));
    putJpeg(plain(62, 62, 200));
    EXPECT_THAT(checkWater(), SaysAlso(Mark::hint, "no multiple of 4"));
    putJpeg(plain(64, 32, 200));
    EXPECT_THAT(checkWater(), Says(Mark::hint, "is 64 x 32: not square"));
    putJpeg(gradient(16384, 8, 3));
    EXPECT_THAT(checkWater(), SaysAlso(Mark::hint, "too large"));
}

TEST_F(CheckPictureTest, ADamagedJpegIsNamedWithTheLibrarysWords)
{
    const std::string whole = folder.read("data/underwater.jpg");
    folder.write("data/underwater.jpg", whole.substr(0, whole.size() / 2));
    testing::internal::CaptureStderr();
    EXPECT_THAT(checkWater(), Says(Mark::wrong, "is damaged (Premature end of JPEG"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "it is told once";
    folder.write("data/underwater.jpg", whole.substr(0, 30));
    EXPECT_THAT(checkWater(), Says(Mark::wrong, "cannot be decoded ("));
    folder.write("data/underwater.jpg", "");
    EXPECT_THAT(checkWater(), Says(Mark::wrong, "cannot be decoded (Empty input file)"));
    folder.write("data/underwater.jpg", "not a picture");
    EXPECT_THAT(checkWater(), Says(Mark::wrong, "Not a JPEG file"));
}

TEST_F(CheckPictureTest, PngKindsThatTheSceneDoesNotTakeLeaveSquares)
{
    putPng("data/fish0.png", PNG_COLOR_TYPE_PALETTE, 8, 64);
    EXPECT_THAT(checkFish(), Says(Mark::wrong, "has a palette (Unsupported color"));
    putPng("data/fish0.png", PNG_COLOR_TYPE_PALETTE, 2, 16);
    EXPECT_THAT(checkFish(), Says(Mark::wrong, "has a palette"));
    putPng("data/bubble.png", PNG_COLOR_TYPE_GRAY_ALPHA, 8, 128);
    EXPECT_THAT(checkBubble(), Says(Mark::wrong, "is gray with alpha"));
}

TEST_F(CheckPictureTest, PngKindsOfOtherThanFourComponentsAreGarbled)
{
    putPng("data/fish0.png", PNG_COLOR_TYPE_GRAY, 8, 64);
    EXPECT_THAT(checkFish(), Says(Mark::wrong, "is gray: the scene takes it for RGBA"));
    putPng("data/fish0.png", PNG_COLOR_TYPE_RGB, 8, 192);
    EXPECT_THAT(checkFish(), Says(Mark::wrong, "has no alpha channel"));
}

TEST_F(CheckPictureTest, ADamagedPngIsNamedWithTheLibrarysWords)
{
    const std::string whole = folder.read("data/fish0.png");
    for (const std::string& bytes : {std::string(), std::string("not a picture"),
                                     whole.substr(0, 30), whole.substr(0, whole.size() / 2)}) {
        folder.write("data/fish0.png", bytes);
        EXPECT_THAT(checkFish(), Says(Mark::wrong, "cannot be decoded (libpng error"));
    }
}

TEST_F(CheckPictureTest, HintsAtSixteenBits)
{
    const Picture picture = disc(64, 24);
    Bytes wide;
    for (const unsigned char byte : picture.bytes) {
        wide.push_back(byte);
        wide.push_back(byte);
    }
    const TempPath path(".png");
    writePng(path, 64, 64, PNG_COLOR_TYPE_RGB_ALPHA, 16, wide);
    put("data/bubble.png", path.read());
    EXPECT_THAT(checkBubble(), Says(Mark::hint, "16 bits"));
}

TEST_F(CheckPictureTest, ASpriteNeedsATransparentEdge)
{
    putPng("data/bubble.png", disc(64, 30));
    EXPECT_THAT(checkBubble(), IsFine()) << "exactly 2 pixels are left";
    putPng("data/bubble.png", disc(64, 31));
    EXPECT_THAT(checkBubble(), Says(Mark::hint, "only 1 transparent pixel"));
    putPng("data/bubble.png", disc(64, 32));
    EXPECT_THAT(checkBubble(), Says(Mark::wrong, "reaches its edge"));
    putPng("data/bubble.png", disc(64, 60));
    EXPECT_THAT(checkBubble(), Says(Mark::wrong, "reaches its edge"));
}

TEST_F(CheckPictureTest, DarkTransparentPixelsMakeADarkFringe)
{
    putPng("data/fish0.png", disc(64, 24, 0));
    EXPECT_THAT(checkFish(), Says(Mark::wrong, "dark fringe"));
    putPng("data/fish0.png", disc(64, 24, 120));
    EXPECT_THAT(checkFish(), IsFine()) << "half as bright is not seen";
}

TEST_F(CheckPictureTest, ASpriteHasSomethingToSee)
{
    putPng("data/fish0.png", disc(64, 0));
    EXPECT_THAT(checkFish(), Says(Mark::wrong, "nothing to see"));
}

TEST_F(CheckPictureTest, HintsAtAFishThatSeemsToSwimBackwards)
{
    Picture fish = disc(64, 24);
    // The upper half of the disc but for a stem.
    for (std::size_t y = 0; y < 32; ++y) {
        for (std::size_t x = 0; x < 64; ++x) {
            if (x < 28 || x > 35) {
                fish.bytes[(y * 64 + x) * 4 + 3] = 0;
            }
        }
    }
    putPng("data/fish0.png", fish);
    EXPECT_THAT(checkFish(), Says(Mark::hint, "swims backwards"));
    fish.bytes = fish.bottomUp();
    putPng("data/fish0.png", fish);
    EXPECT_THAT(checkFish(), IsFine());
    fish.bytes = fish.bottomUp();
    putPng("data/bubble.png", fish);
    EXPECT_THAT(checkBubble(), IsFine()) << "bubbles have no head";
}

/// An ellipse of 1 by 2 in the middle, turned clockwise.
Picture ellipse(double degrees)
{
    Picture picture = disc(64, 28);
    const double angle = degrees * 3.14159265358979 / 180;
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            const double right = x - 31.5;
            const double up = 31.5 - y;
            const double along = right * std::sin(angle) + up * std::cos(angle);
            const double across = right * std::cos(angle) - up * std::sin(angle);
            if (std::hypot(along, 2 * across) >= 28) {
                picture.bytes[(static_cast<std::size_t>(y) * 64 + static_cast<std::size_t>(x)) * 4 +
                              3] = 0;
            }
        }
    }
    return picture;
}

TEST_F(CheckPictureTest, HintsAtAFishThatDoesNotPointUp)
{
    const auto fishAt = [&](double degrees) {
        putPng("data/fish0.png", ellipse(degrees));
        return checkFish();
    };
    EXPECT_THAT(fishAt(0), IsFine());
    EXPECT_THAT(fishAt(10), IsFine());
    EXPECT_THAT(fishAt(-10), IsFine());
    EXPECT_THAT(fishAt(30), Says(Mark::hint, "leans to the right by 30 degrees"));
    EXPECT_THAT(fishAt(-45), Says(Mark::hint, "leans to the left by 45 degrees"));
    EXPECT_THAT(fishAt(90), Says(Mark::hint, "lies across the picture"));
    EXPECT_THAT(fishAt(-85), Says(Mark::hint, "lies across the picture"));
    putPng("data/bubble.png", ellipse(90));
    EXPECT_THAT(checkBubble(), IsFine()) << "bubbles have no head";
}

TEST_F(CheckPictureTest, HintsAtASpriteOfWhichMostTexelsAreLeftOut)
{
    // Four texels to each of 31 pixels are 124.
    putPng("data/fish0.png", disc(124, 50));
    EXPECT_THAT(checkFish(), testing::Not(SaysAlso(Mark::hint, "flickers")));
    putPng("data/fish0.png", disc(128, 50));
    EXPECT_THAT(checkFish(),
                Says(Mark::hint, "is shown 31 pixels wide, which leaves out most of its 128: it "
                                 "flickers as it moves; scale it to 64 x 64"));
}

TEST_F(CheckPictureTest, ASpriteStandsOutFromItsWater)
{
    // The scene halves 240 to 120. Over that a gray of 140 shows as 130: 10 in each channel are
    // 17 in space; one of 130 shows 5, which are 9.
    putJpeg(plain(64, 64, 240));
    const auto discOf = [&](unsigned char gray, unsigned char alpha) {
        Picture picture = disc(64, 24);
        for (std::size_t i = 0; i < picture.bytes.size(); i += 4) {
            std::fill_n(&picture.bytes[i], 3, gray);
            picture.bytes[i + 3] = picture.bytes[i + 3] == 0 ? 0 : alpha;
        }
        putPng("data/fish0.png", picture);
        putPng("data/bubble.png", picture);
        return checkFish();
    };
    EXPECT_THAT(discOf(140, 255), Says(Mark::hint, "is hard to find"));
    EXPECT_THAT(checkBubble(), IsFine());
    EXPECT_THAT(discOf(130, 255),
                Says(Mark::wrong, "is nearly invisible: at half opacity its color "
                                  "is only 9 of 255 from that of the water"));
    EXPECT_THAT(checkBubble(), Says(Mark::wrong, "is nearly invisible"));
    folder.remove("sound/magpie_vocal.ogg"); // which would take seconds to decode
    const std::vector<FileReport> all = media::checkFolder(folder.path());
    EXPECT_THAT(all, Contains(AllOf(Field(&FileReport::name, "data/fish0.png"),
                                    Says(Mark::wrong, "is nearly invisible"))));
    EXPECT_THAT(all, Contains(AllOf(Field(&FileReport::name, "data/bubble.png"),
                                    Says(Mark::wrong, "is nearly invisible"))));
    EXPECT_THAT(discOf(110, 255), Says(Mark::wrong, "only 9 of 255"));
    // So is what is hardly there: 135 * sqrt(3) / 2 at an alpha of 20 is 9.
    EXPECT_THAT(discOf(255, 20), Says(Mark::wrong, "only 9 of 255"));
    folder.remove("data/underwater.jpg");
    EXPECT_THAT(discOf(130, 255), IsFine()) << "there is nothing to compare with";
}

TEST_F(CheckPictureTest, HintsAtAFishThatIsHardToFindOverAPartOfTheWater)
{
    // Three quarters are shown as 20, one quarter as 120. A disc of 120 shows as 70 over the one
    // and not at all over the other.
    Picture water = plain(64, 64, 40);
    std::fill_n(water.bytes.begin(), 16 * 64 * 3, static_cast<unsigned char>(240));
    putJpeg(water);
    Picture picture = disc(64, 24);
    for (std::size_t i = 0; i < picture.bytes.size(); i += 4) {
        std::fill_n(&picture.bytes[i], 3, static_cast<unsigned char>(120));
    }
    putPng("data/fish0.png", picture);
    EXPECT_THAT(checkFish(), Says(Mark::hint, "is hard to find over 25 % of the water"));
}

TEST(ColorDifferenceTest, IsTheDistanceInLab)
{
    using media::colorDifference;
    EXPECT_NEAR(colorDifference({0, 0, 0}, {255, 255, 255}), 100, 0.05f);
    EXPECT_EQ(colorDifference({12, 34, 56}, {12, 34, 56}), 0);
    // Tabled: sRGB red is L* 53.24, a* 80.09, b* 67.20; blue 32.30, 79.19, -107.86.
    EXPECT_NEAR(colorDifference({255, 0, 0}, {0, 0, 255}), 176.31f, 0.1f);
    // Gray of 119 has L* 50.03.
    EXPECT_NEAR(colorDifference({119, 119, 119}, {0, 0, 0}), 50.03f, 0.05f);
}

TEST_F(CheckPictureTest, TakesSpritesOfASinglePixel)
{
    putPng("data/fish0.png", disc(1, 1));
    EXPECT_THAT(checkFish(), SaysAlso(Mark::wrong, "reaches its edge"));
    putPng("data/fish0.png", disc(2, 2));
    EXPECT_THAT(checkFish(), SaysAlso(Mark::wrong, "reaches its edge"));
}

} // namespace
