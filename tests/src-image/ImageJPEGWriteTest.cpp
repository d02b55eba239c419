#include "ImageJPEG.h"

#include "ReadImage.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

using testing::HasSubstr;

Outcome write(ImageJPEG& image, const char* filename, int quality = 90)
{
    return outcomeOf([&] { return image.write(filename, quality); });
}

TEST(ImageJPEGTest, WritesTheBufferRowsInTheirOrder)
{
    const TempPath path(".jpg");
    const TempPath expected(".jpg");
    const Picture rows = noise(13, 6, 3);
    writeJpeg(expected, rows, 77);
    ImageJPEG image;
    image.buffer = new unsigned char[rows.bytes.size()];
    std::copy(rows.bytes.begin(), rows.bytes.end(), image.buffer);
    image.w = 13;
    image.h = 6;
    image.c = 3;
    const Outcome outcome = write(image, path.name(), 77);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(path.read(), expected.read());
}

TEST(ImageJPEGTest, APictureThatWasJustReadIsWrittenUpsideDown)
{
    const TempPath original(".jpg");
    const TempPath copy(".jpg");
    writeJpeg(original, gradient(24, 24, 3), 100);
    ImageJPEG image;
    readWhole(image, original);
    EXPECT_EQ(write(image, copy.name(), 100).status, 1);
    const Bytes expected = readJpeg(original).bottomUp();
    const Bytes written = readJpeg(copy).bytes;
    ASSERT_EQ(written.size(), expected.size());
    for (std::size_t i = 0; i < written.size(); ++i) {
        ASSERT_NEAR(written[i], expected[i], 6) << i;
    }
    EXPECT_GT(written.front(), written[23 * 24 * 3]);
}

TEST(ImageJPEGTest, QualityBeyondItsRangeCountsAsTheNearerEnd)
{
    const TempPath low(".jpg");
    const TempPath lowest(".jpg");
    const TempPath high(".jpg");
    const TempPath highest(".jpg");
    const TempPath original(".jpg");
    writeJpeg(original, noise(32, 32, 3), 100);
    ImageJPEG image;
    readWhole(image, original);
    EXPECT_EQ(write(image, lowest.name(), -5).status, 1);
    EXPECT_EQ(write(image, low.name(), 0).status, 1);
    EXPECT_EQ(write(image, high.name(), 100).status, 1);
    EXPECT_EQ(write(image, highest.name(), 1000).status, 1);
    EXPECT_EQ(lowest.read(), low.read());
    EXPECT_EQ(highest.read(), high.read());
    EXPECT_LT(low.read().size(), high.read().size());
}

TEST(ImageJPEGTest, WritingWithoutAPictureMakesNoFile)
{
    const TempPath path(".jpg");
    ImageJPEG image;
    const Outcome outcome = write(image, path.name());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
    EXPECT_FALSE(path.exists());

    const TempPath missing(".jpg");
    read(image, missing.name());
    EXPECT_EQ(write(image, path.name()).status, 0);
    EXPECT_FALSE(path.exists());
}

TEST(ImageJPEGTest, AFileThatCannotBeWrittenIsReportedOnStandardError)
{
    const TempPath original(".jpg");
    writeJpeg(original, noise(3, 3, 3));
    ImageJPEG image;
    readWhole(image, original);
    const std::string nowhere = std::string(original.name()) + "/below-a-file.jpg";
    Outcome outcome = write(image, nowhere.c_str());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "can't open " + nowhere + "\n");
    outcome = write(image, nullptr);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "can't open (null)\n");
}

TEST(ImageJPEGTest, ADirectoryAndAPipeCannotBeWritten)
{
    const TempPath original(".jpg");
    const TempPath pipe(".jpg");
    writeJpeg(original, noise(3, 3, 3));
    ASSERT_EQ(mkfifo(pipe.name(), 0600), 0);
    ImageJPEG image;
    readWhole(image, original);
    for (const std::string& name : {testing::TempDir(), std::string(pipe.name())}) {
        const Outcome outcome = write(image, name.c_str());
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.err, "can't open " + name + "\n");
    }
}

TEST(ImageJPEGTest, AFullDiskFailsTheWrite)
{
    const TempPath original(".jpg");
    writeJpeg(original, noise(64, 64, 3), 100);
    ImageJPEG image;
    readWhole(image, original);
    const Outcome outcome = write(image, "/dev/full");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.err, HasSubstr("Output file write error"));
}

TEST(ImageJPEGTest, PixelsThatAreNotRgbAreNotWritten)
{
    const TempPath original(".jpg");
    const TempPath path(".jpg");
    for (const std::size_t channels : {1, 4}) {
        writeJpeg(original, noise(3, 3, channels));
        ImageJPEG image;
        readWhole(image, original);
        const Outcome outcome = write(image, path.name());
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.err, "Bogus input colorspace\n");
    }
}

TEST(ImageJPEGTest, APictureWithoutRowsIsNotWritten)
{
    const TempPath path(".jpg");
    ImageJPEG image;
    image.buffer = new unsigned char[3];
    image.c = 3;
    const Outcome outcome = write(image, path.name());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "Empty JPEG image (DNL not supported)\n");
}

} // namespace
