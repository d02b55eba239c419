#include "ImageJPEG.h"

#include "ReadImage.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utility>

namespace {

using testing::HasSubstr;
Outcome write(ImageJPEG& image, const char* filename, int quality = 90)
{
    return outcomeOf([&] { return image.write(filename, quality); });
}

/// A JPEG file whose frame header claims a size.
Bytes claiming(const Bytes& file, int width, int height)
{
    Bytes changed = file;
    const auto isFrame = [](int a, int b) { return a == 0xFF && (b == 0xC0 || b == 0xC2); };
    const auto frame = std::adjacent_find(changed.begin(), changed.end(), isFrame);
    EXPECT_GT(changed.end() - frame, 9);
    int at = 5;
    for (const int size : {height, width}) {
        frame[at++] = static_cast<unsigned char>(size >> 8);
        frame[at++] = static_cast<unsigned char>(size & 0xFF);
    }
    return changed;
}

/// Where the first scan starts.
std::size_t firstScan(const Bytes& file)
{
    const Bytes startOfScan = {0xFF, 0xDA};
    const auto at = std::search(file.begin(), file.end(), startOfScan.begin(), startOfScan.end());
    return static_cast<std::size_t>(at - file.begin());
}

TEST(ImageJPEGTest, StartsWithoutAPicture)
{
    expectStartWithoutPicture<ImageJPEG>(IMAGE_JPEG);
}

TEST(ImageJPEGTest, ReadsOnePixelOfColor)
{
    const TempPath path(".jpg");
    writeJpeg(path, {1, 1, 3, {128, 128, 128}}, 100);
    ImageJPEG image;
    readWhole(image, path);
    EXPECT_EQ(image.getWidth(), 1);
    EXPECT_EQ(image.getHeight(), 1);
    EXPECT_EQ(image.getComponents(), 3);
    EXPECT_EQ(bytesOf(image), (Bytes{128, 128, 128}));
}

TEST(ImageJPEGTest, ReadsOnePixelOfGray)
{
    const TempPath path(".jpg");
    writeJpeg(path, {1, 1, 1, {128}}, 100);
    ImageJPEG image;
    readWhole(image, path);
    EXPECT_EQ(image.getWidth(), 1);
    EXPECT_EQ(image.getHeight(), 1);
    EXPECT_EQ(image.getComponents(), 1);
    EXPECT_EQ(bytesOf(image), Bytes{128});
}

TEST(ImageJPEGTest, TheFirstBufferRowIsTheLastRowOfTheFile)
{
    const TempPath path(".jpg");
    writeJpeg(path, {3, 2, 1, {40, 40, 40, 200, 200, 200}}, 100);
    ImageJPEG image;
    readWhole(image, path);
    for (int x = 0; x < 3; ++x) {
        EXPECT_NEAR(image.buffer[x], 200, 3);
        EXPECT_NEAR(image.buffer[3 + x], 40, 3);
    }
}

TEST(ImageJPEGTest, ReadsWhatTheLibraryDecodesForEveryKindAndShape)
{
    for (const JpegKind kind : {JpegKind::baseline, JpegKind::progressive}) {
        for (const std::size_t channels : {1, 3, 4}) {
            for (const std::size_t width : {1, 5, 16, 33}) {
                for (const std::size_t height : {1, 2, 7, 40}) {
                    const TempPath path(".jpg");
                    writeJpeg(path, noise(width, height, channels), 85, kind);
                    const Picture expected = readJpeg(path);
                    ASSERT_EQ(expected.channels, channels);
                    ImageJPEG image;
                    readWhole(image, path);
                    ASSERT_EQ(image.w, static_cast<int>(width));
                    ASSERT_EQ(image.h, static_cast<int>(height));
                    ASSERT_EQ(image.c, static_cast<int>(channels));
                    ASSERT_EQ(bytesOf(image), expected.bottomUp());
                }
            }
        }
    }
}

TEST(ImageJPEGTest, GrayPixelsAreReadableAsRgb)
{
    const TempPath path(".jpg");
    writeJpeg(path, noise(5, 3, 1));
    ImageJPEG image;
    readWhole(image, path);
    EXPECT_EQ(Bytes(image.buffer + 15, image.buffer + 45), Bytes(30, 0));
}

TEST(ImageJPEGTest, KeepsACopyOfTheFileNameThatOutlivesTheImage)
{
    const TempPath path(".jpg");
    writeJpeg(path, noise(2, 2, 3));
    expectNameThatOutlivesTheImage<ImageJPEG>(path);
}

TEST(ImageJPEGTest, ASecondReadReplacesThePicture)
{
    const TempPath first(".jpg");
    const TempPath second(".jpg");
    writeJpeg(first, noise(9, 9, 3));
    writeJpeg(second, noise(4, 2, 1));
    ImageJPEG image;
    readWhole(image, first);
    readWhole(image, second);
    EXPECT_EQ(image.w, 4);
    EXPECT_EQ(image.h, 2);
    EXPECT_EQ(image.c, 1);
    EXPECT_EQ(bytesOf(image), readJpeg(second).bottomUp());
    EXPECT_STREQ(image.getSourceFile(), second.name());
}

TEST(ImageJPEGTest, FreeBufferReleasesTheBufferAndKeepsTheSizes)
{
    const TempPath path(".jpg");
    writeJpeg(path, noise(2, 3, 3));
    expectFreeBufferToKeepTheSizes<ImageJPEG>(path);
}

TEST(ImageJPEGTest, AFileThatCannotBeOpenedIsReportedOnStandardOutput)
{
    const TempPath path(".jpg");
    ImageJPEG image;
    const Outcome outcome = read(image, path.name());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, std::string("can't open ") + path.name() + "\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(image.buffer, nullptr);
}

TEST(ImageJPEGTest, ANullNameCannotBeOpened)
{
    ImageJPEG image;
    const Outcome outcome = read(image, nullptr);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "can't open (null)\n");
}

TEST(ImageJPEGTest, ADirectoryAPipeAndADeviceCannotBeOpened)
{
    const TempPath pipe(".jpg");
    ASSERT_EQ(mkfifo(pipe.name(), 0600), 0);
    for (const std::string& name :
         {testing::TempDir(), std::string(pipe.name()), std::string("/dev/zero")}) {
        ImageJPEG image;
        const Outcome outcome = read(image, name.c_str());
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.out, "can't open " + name + "\n");
        EXPECT_EQ(outcome.err, "");
    }
}

TEST(ImageJPEGTest, AnEmptyOrForeignFileGivesTheLibrarysMessage)
{
    const TempPath path(".jpg");
    ImageJPEG image;
    path.write({});
    Outcome outcome = read(image, path.name());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "Empty input file\n");

    writePng(path, noise(2, 2, 3));
    outcome = read(image, path.name());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "Not a JPEG file: starts with 0x89 0x50\n");
    EXPECT_EQ(image.buffer, nullptr);
}

TEST(ImageJPEGTest, AFileCutAnywhereIsReadAsFarAsItGoes)
{
    const TempPath whole(".jpg");
    const TempPath path(".jpg");
    for (const JpegKind kind : {JpegKind::baseline, JpegKind::progressive}) {
        writeJpeg(whole, noise(9, 17, 3), 60, kind);
        const Bytes file = whole.read();
        const std::size_t scan = firstScan(file);
        for (std::size_t size = 0; size < file.size(); ++size) {
            path.write(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size)));
            ImageJPEG image;
            const Outcome outcome = read(image, path.name());
            EXPECT_NE(outcome.err, "") << size;
            if (size <= scan) {
                EXPECT_EQ(outcome.status, 0) << size;
                EXPECT_EQ(image.buffer, nullptr) << size;
                EXPECT_EQ(sizeOf(image), 0u) << size;
            } else if (outcome.status == 1) {
                EXPECT_EQ(bytesOf(image).size(), 9u * 17u * 3u) << size;
            } else {
                EXPECT_EQ(image.sourceFile, nullptr) << size;
            }
        }
    }
}

TEST(ImageJPEGTest, AFileWithAnyByteChangedIsReadOrRefused)
{
    const TempPath path(".jpg");
    writeJpeg(path, noise(9, 5, 3), 50);
    expectReadOrRefusedWithAnyByteChanged<ImageJPEG>(path, 0);
}

TEST(ImageJPEGTest, AFailedReadKeepsThePreviousPicture)
{
    const TempPath good(".jpg");
    const TempPath bad(".jpg");
    writeJpeg(good, noise(5, 4, 3));
    bad.write({0xFF, 0xD8, 0xFF});
    ImageJPEG image;
    readWhole(image, good);
    EXPECT_EQ(read(image, bad.name()).status, 0);
    EXPECT_EQ(bytesOf(image), readJpeg(good).bottomUp());
}

TEST(ImageJPEGTest, AnErrorBehindThePixelsKeepsThem)
{
    const TempPath path(".jpg");
    writeJpeg(path, noise(5, 4, 3));
    const Bytes expected = readJpeg(path).bottomUp();
    path.write(withTwoFrames(path.read()));
    ImageJPEG image;
    const Outcome outcome = read(image, path.name());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "Invalid JPEG file structure: two SOF markers\n");
    EXPECT_EQ(bytesOf(image), expected);
    EXPECT_EQ(image.sourceFile, nullptr);
}

TEST(ImageJPEGTest, APictureTooLargeForMemoryIsRefused)
{
    const TempPath path(".jpg");
    writeJpeg(path, noise(8, 8, 3));
    const Bytes file = path.read();
    path.write(claiming(file, 65000, 65000));

    const TempPath good(".jpg");
    writeJpeg(good, noise(4, 4, 3));
    ImageJPEG image;
    readWhole(image, good);
    const Outcome outcome = read(image, path.name());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "65000 x 65000 pixels are too many\n");
    EXPECT_EQ(image.buffer, nullptr);
    EXPECT_EQ(sizeOf(image), 0u);
    EXPECT_STREQ(image.sourceFile, good.name());

    path.write(claiming(file, 30000, 12000)); // a little more than 1 GiB, which memory could hold
    EXPECT_EQ(read(image, path.name()).err, "30000 x 12000 pixels are too many\n");
}

/// Reads into a fresh image, which stays as it was made.
void expectRefused(const TempPath& path, const std::string& error)
{
    ImageJPEG image;
    const Outcome outcome = read(image, path.name());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, error);
    EXPECT_EQ(image.buffer, nullptr);
    EXPECT_EQ(sizeOf(image), 0u);
    EXPECT_EQ(image.sourceFile, nullptr);
}

TEST(ImageJPEGTest, AProgressivePictureTooLargeForMemoryIsRefusedBeforeItIsDecoded)
{
    const TempPath path(".jpg");
    writeJpeg(path, noise(8, 8, 3), 90, JpegKind::progressive);
    const Bytes file = path.read();
    // The library would keep the whole picture's coefficients: a little more than 1 GiB first,
    // which memory could hold, since a reader that tries the other uses up all there is.
    for (const auto& [width, height] : {std::pair(30000, 12000), std::pair(65000, 65000)}) {
        path.write(claiming(file, width, height));
        expectRefused(path, "Backing store not supported\n");
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

TEST(ImageJPEGTest, APictureWithoutColumnsOrRowsIsRefused)
{
    const TempPath path(".jpg");
    for (const JpegKind kind : {JpegKind::baseline, JpegKind::progressive}) {
        writeJpeg(path, noise(8, 8, 3), 90, kind);
        const Bytes file = path.read();
        for (const auto& [width, height] : {std::pair(0, 8), std::pair(8, 0), std::pair(0, 0)}) {
            path.write(claiming(file, width, height));
            expectRefused(path, "Empty JPEG image (DNL not supported)\n");
        }
    }
}

/// A progressive picture whose last scan comes again and again.
Bytes withScans(int count)
{
    const TempPath path(".jpg");
    writeJpeg(path, noise(16, 16, 1), 90, JpegKind::progressive);
    const Bytes file = path.read();
    const Bytes startOfScan = {0xFF, 0xDA};
    const auto lastScan =
        std::find_end(file.begin(), file.end(), startOfScan.begin(), startOfScan.end());
    const auto endOfImage = file.end() - 2;
    Bytes scans(file.begin(), endOfImage);
    for (int i = 0; i < count; ++i) {
        scans.insert(scans.end(), lastScan, endOfImage);
    }
    scans.insert(scans.end(), endOfImage, file.end());
    return scans;
}

TEST(ImageJPEGTest, AFileOfMoreThan100ScansIsRefused)
{
    const Bytes file = withScans(0);
    int scans = 0;
    for (std::size_t i = 0; i + 1 < file.size(); ++i) {
        scans += file[i] == 0xFF && file[i + 1] == 0xDA ? 1 : 0;
    }
    const TempPath path(".jpg");
    path.write(withScans(100 - scans));
    ImageJPEG image;
    EXPECT_EQ(read(image, path.name()).status, 1);
    path.write(withScans(101 - scans));
    const Outcome outcome = read(image, path.name());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.err, HasSubstr("More than 100 scans\n"));
}

TEST(ImageJPEGTest, ALargePictureMayHaveFewerScans)
{
    // 8000 by 8000 pixels: 2^32 / 64000000 scans.
    const TempPath path(".jpg");
    path.write(claiming(withScans(90), 8000, 8000));
    ImageJPEG image;
    const Outcome outcome = read(image, path.name());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.err, HasSubstr("More than 67 scans\n"));
}

TEST(ImageJPEGTest, AfterAnyFailureAFileIsReadAsByAFreshImage)
{
    const TempPath good(".jpg");
    const TempPath bad(".jpg");
    writeJpeg(good, noise(5, 4, 3));
    const Bytes expected = readJpeg(good).bottomUp();
    writeJpeg(bad, noise(9, 7, 1));
    const Bytes file = bad.read();
    writeJpeg(bad, noise(9, 7, 1), 90, JpegKind::progressive);
    const Bytes progressive = bad.read();
    const std::vector<Bytes> failures = {{},
                                         Bytes(file.begin(), file.begin() + 30),
                                         withTwoFrames(file),
                                         claiming(file, 0, 7),
                                         claiming(file, 9, 0),
                                         claiming(file, 65000, 65000),
                                         claiming(progressive, 65000, 65000),
                                         withScans(200)};
    expectNoTraceOf<ImageJPEG>(failures, 0, good, bad, expected);
}

TEST(ImageJPEGTest, TheFileIsClosedWhateverHappens)
{
    const TempPath good(".jpg");
    const TempPath bad(".jpg");
    writeJpeg(good, noise(3, 3, 3));
    bad.write({0xFF, 0xD8, 0xFF});
    ImageJPEG image;
    readWhole(image, good);
    EXPECT_FALSE(good.isOpen());
    EXPECT_EQ(read(image, bad.name()).status, 0);
    EXPECT_FALSE(bad.isOpen());
    EXPECT_EQ(write(image, bad.name()).status, 1);
    EXPECT_FALSE(bad.isOpen());
    image.c = 1;
    EXPECT_EQ(write(image, bad.name()).status, 0);
    EXPECT_FALSE(bad.isOpen());
}

} // namespace
