#include "ImagePNG.h"

#include "PeakOfMemory.h"
#include "ReadImage.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <png.h>
#include <sys/stat.h>
#include <vector>
#include <zlib.h>

namespace {

using testing::HasSubstr;
/// Reads a file of one row of gray samples.
Bytes samplesOf(int bitDepth, std::size_t width, const Bytes& packed)
{
    const TempPath path(".png");
    writePng(path, width, 1, PNG_COLOR_TYPE_GRAY, bitDepth, packed);
    ImagePNG image;
    readWhole(image, path);
    EXPECT_EQ(image.c, 1);
    return bytesOf(image);
}

TEST(ImagePNGTest, StartsWithoutAPicture)
{
    expectStartWithoutPicture<ImagePNG>(IMAGE_PNG);
}

TEST(ImagePNGTest, TheFirstBufferRowIsTheLastRowOfTheFile)
{
    const TempPath path(".png");
    writePng(path, {1, 2, 3, {1, 2, 3, 4, 5, 6}});
    ImagePNG image;
    readWhole(image, path);
    EXPECT_EQ(bytesOf(image), (Bytes{4, 5, 6, 1, 2, 3}));
}

TEST(ImagePNGTest, ReadsEveryKindAndShapeExactly)
{
    for (const bool interlaced : {false, true}) {
        for (const std::size_t channels : {1, 3, 4}) {
            for (const std::size_t width : {1, 2, 5, 8, 33}) {
                for (const std::size_t height : {1, 2, 3, 7, 20}) {
                    const TempPath path(".png");
                    const Picture picture = noise(width, height, channels);
                    writePng(path, picture, interlaced);
                    ImagePNG image;
                    readWhole(image, path);
                    ASSERT_EQ(image.getWidth(), static_cast<int>(width));
                    ASSERT_EQ(image.getHeight(), static_cast<int>(height));
                    ASSERT_EQ(image.getComponents(), static_cast<int>(channels));
                    ASSERT_EQ(bytesOf(image), picture.bottomUp());
                }
            }
        }
    }
}

TEST(ImagePNGTest, PixelsAreReadableAsRgba)
{
    for (const std::size_t channels : {1, 3}) {
        const TempPath path(".png");
        writePng(path, noise(5, 3, channels));
        ImagePNG image;
        readWhole(image, path);
        EXPECT_EQ(Bytes(image.buffer + 15 * channels, image.buffer + 60),
                  Bytes(60 - 15 * channels, 0));
    }
}

TEST(ImagePNGTest, SamplesOfFewBitsBecomeBytesUnscaled)
{
    EXPECT_EQ(samplesOf(1, 10, {0b10110010, 0b01000000}), (Bytes{1, 0, 1, 1, 0, 0, 1, 0, 0, 1}));
    EXPECT_EQ(samplesOf(2, 5, {0b00011011, 0b11000000}), (Bytes{0, 1, 2, 3, 3}));
    EXPECT_EQ(samplesOf(4, 3, {0x0F, 0x70}), (Bytes{0, 15, 7}));
}

TEST(ImagePNGTest, SamplesOf16BitsAreCutNotRounded)
{
    EXPECT_EQ(samplesOf(16, 3, {0x12, 0xFF, 0x80, 0x00, 0xFE, 0xFE}), (Bytes{0x12, 0x80, 0xFE}));

    const TempPath path(".png");
    writePng(path, 2, 1, PNG_COLOR_TYPE_RGB, 16, {1, 255, 2, 255, 3, 255, 4, 0, 5, 0, 6, 0});
    ImagePNG image;
    readWhole(image, path);
    EXPECT_EQ(image.c, 3);
    EXPECT_EQ(bytesOf(image), (Bytes{1, 2, 3, 4, 5, 6}));
}

TEST(ImagePNGTest, PalettesAndGrayWithAlphaAreNotSupported)
{
    struct Case {
        int colorType;
        int bitDepth;
        Bytes rows;
    };
    const Case cases[] = {{PNG_COLOR_TYPE_PALETTE, 8, {0, 1, 2, 3}},
                          {PNG_COLOR_TYPE_PALETTE, 2, {0b00010000, 0b10110000}},
                          {PNG_COLOR_TYPE_GRAY_ALPHA, 8, {1, 2, 3, 4, 5, 6, 7, 8}},
                          {PNG_COLOR_TYPE_GRAY_ALPHA, 16, Bytes(16, 7)}};
    for (const Case& c : cases) {
        const TempPath path(".png");
        writePng(path, 2, 2, c.colorType, c.bitDepth, c.rows);
        ImagePNG image;
        const Outcome outcome = read(image, path.name());
        EXPECT_EQ(outcome.status, -1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, "Unsupported color type!\n");
        EXPECT_EQ(image.buffer, nullptr);
        EXPECT_EQ(image.w, 2);
        EXPECT_EQ(image.h, 2);
        EXPECT_EQ(image.c, 0);
        EXPECT_EQ(image.sourceFile, nullptr);
    }
}

TEST(ImagePNGTest, ThePixelsAreCheckedBeforeTheColorType)
{
    const TempPath path(".png");
    writePng(path, 2, 2, PNG_COLOR_TYPE_PALETTE, 8, {0, 1, 2, 3});
    Bytes file = path.read();
    file.erase(file.end() - 12, file.end()); // the end chunk
    path.write(file);
    ImagePNG image;
    const Outcome outcome = read(image, path.name());
    EXPECT_EQ(outcome.status, -1);
    EXPECT_THAT(outcome.err, HasSubstr("libpng error: "));
    EXPECT_EQ(image.w, 0);
}

TEST(ImagePNGTest, ANameWithoutTheSuffixIsRefusedSilently)
{
    const TempPath path(".Png");
    writePng(path, noise(2, 2, 3));
    ImagePNG image;
    for (const char* name : {path.name(), "picture", "", static_cast<const char*>(nullptr)}) {
        const Outcome outcome = read(image, name);
        EXPECT_EQ(outcome.status, -1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, "");
    }
}

TEST(ImagePNGTest, TheSuffixMayStandAnywhere)
{
    const TempPath upper(".PNG");
    writePng(upper, noise(2, 2, 3));
    ImagePNG image;
    readWhole(image, upper);

    const TempPath inside(".png.picture");
    writePng(inside, noise(3, 2, 3));
    readWhole(image, inside);
    EXPECT_EQ(image.w, 3);
}

TEST(ImagePNGTest, AJpegWhoseNamePassesFailsInTheLibrary)
{
    const TempPath path(".png.jpg");
    writeJpeg(path, noise(2, 2, 3));
    ImagePNG image;
    const Outcome outcome = read(image, path.name());
    EXPECT_EQ(outcome.status, -1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "libpng error: Not a PNG file\n");
}

TEST(ImagePNGTest, AFileThatCannotBeOpenedIsReportedOnStandardError)
{
    const TempPath missing(".png");
    const TempPath pipe(".png");
    ASSERT_EQ(mkfifo(pipe.name(), 0600), 0);
    const TempPath directory(".png");
    std::filesystem::create_directory(directory.name());
    for (const TempPath* path : {&missing, &pipe, &directory}) {
        ImagePNG image;
        const Outcome outcome = read(image, path->name());
        EXPECT_EQ(outcome.status, -1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, std::string("Can't open file ") + path->name() + "\n");
    }
}

TEST(ImagePNGTest, AFileCutAnywhereIsRefusedAndChangesNothing)
{
    const TempPath previous(".png");
    const TempPath path(".png");
    const Picture picture = noise(3, 3, 3);
    writePng(previous, picture);
    ImagePNG image;
    readWhole(image, previous);
    for (const bool interlaced : {false, true}) {
        writePng(path, noise(9, 7, 4), interlaced);
        const Bytes file = path.read();
        for (std::size_t size = 0; size < file.size(); ++size) {
            path.write(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size)));
            const Outcome outcome = read(image, path.name());
            EXPECT_EQ(outcome.status, -1) << size;
            EXPECT_EQ(outcome.out, "") << size;
            EXPECT_THAT(outcome.err, HasSubstr("libpng error: ")) << size;
            EXPECT_EQ(bytesOf(image), picture.bottomUp()) << size;
            EXPECT_STREQ(image.sourceFile, previous.name()) << size;
        }
    }
}

TEST(ImagePNGTest, AFileWithAnyByteChangedIsReadOrRefused)
{
    const TempPath path(".png");
    writePng(path, noise(9, 5, 4), true);
    expectReadOrRefusedWithAnyByteChanged<ImagePNG>(path, -1);
}

TEST(ImagePNGTest, AnUnsupportedFileTakesThePreviousPixelsWithTheSizes)
{
    const TempPath good(".png");
    const TempPath palette(".png");
    writePng(good, noise(2, 2, 4));
    writePng(palette, 4, 4, PNG_COLOR_TYPE_PALETTE, 8, Bytes(16, 1));
    ImagePNG image;
    readWhole(image, good);
    EXPECT_EQ(read(image, palette.name()).status, -1);
    // Four by four pixels are not promised of a buffer that holds two by two.
    EXPECT_EQ(image.w, 4);
    EXPECT_EQ(image.c, 0);
    EXPECT_EQ(image.buffer, nullptr);
    EXPECT_STREQ(image.sourceFile, good.name());
}

/// A PNG file whose header claims a size; the CRC is right.
Bytes claiming(const Bytes& file, std::uint32_t width, std::uint32_t height)
{
    Bytes changed = file;
    png_save_uint_32(&changed[16], width);
    png_save_uint_32(&changed[20], height);
    png_save_uint_32(&changed[29], static_cast<std::uint32_t>(crc32(0, &changed[12], 17)));
    return changed;
}

TEST(ImagePNGTest, APictureTooLargeForMemoryIsRefused)
{
    const TempPath path(".png");
    writePng(path, noise(2, 2, 3));
    const Bytes file = path.read();
    path.write(claiming(file, 900000, 900000));
    ImagePNG image;
    Outcome outcome = read(image, path.name());
    EXPECT_EQ(outcome.status, -1);
    EXPECT_EQ(outcome.err, "Can't get pixels from PNG\n");
    EXPECT_EQ(image.buffer, nullptr);
    EXPECT_EQ(image.w, 0);

    path.write(claiming(file, 20000, 14000)); // a little more than 1 GiB, which memory could hold
    EXPECT_EQ(read(image, path.name()).err, "Can't get pixels from PNG\n");

    path.write(claiming(file, 0x7FFFFFFF, 0x7FFFFFFF));
    outcome = read(image, path.name());
    EXPECT_EQ(outcome.status, -1);
    EXPECT_THAT(outcome.err, HasSubstr("libpng error: "));
}

TEST(ImagePNGTest, APictureOf1GiBIsNotTooLarge)
{
    // Only so much of the buffer is touched as there are pixels in the file, which breaks off.
    const TempPath path(".png");
    writePng(path, noise(2, 2, 4));
    path.write(claiming(path.read(), 16384, 16384));
    ImagePNG image;
    const Outcome outcome = read(image, path.name());
    EXPECT_EQ(outcome.status, -1);
    EXPECT_THAT(outcome.err, HasSubstr("libpng error: "));

    path.write(claiming(path.read(), 16384, 16385));
    EXPECT_EQ(read(image, path.name()).err, "Can't get pixels from PNG\n");
}

TEST(ImagePNGTest, APictureWithoutColumnsOrRowsIsRefused)
{
    const TempPath path(".png");
    writePng(path, noise(2, 2, 3));
    const Bytes file = path.read();
    struct Case {
        std::uint32_t width;
        std::uint32_t height;
        const char* warning;
    };
    const Case cases[] = {{0, 2, "libpng warning: Image width is zero in IHDR\n"},
                          {2, 0, "libpng warning: Image height is zero in IHDR\n"}};
    for (const Case& c : cases) {
        path.write(claiming(file, c.width, c.height));
        ImagePNG image;
        const Outcome outcome = read(image, path.name());
        EXPECT_EQ(outcome.status, -1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, std::string(c.warning) + "libpng error: Invalid IHDR data\n");
        EXPECT_EQ(image.buffer, nullptr);
        EXPECT_EQ(image.w, 0);
        EXPECT_EQ(image.h, 0);
        EXPECT_EQ(image.sourceFile, nullptr);
    }
}

TEST(ImagePNGTest, AfterAnyFailureAFileIsReadAsByAFreshImage)
{
    const TempPath good(".png");
    const TempPath bad(".png");
    const Picture picture = noise(5, 4, 3);
    writePng(good, picture);
    std::vector<Bytes> failures(1); // an empty file
    writePng(bad, noise(9, 7, 4));
    const Bytes file = bad.read();
    failures.emplace_back(file.begin(), file.end() - 12); // without the end chunk
    failures.push_back(file);
    failures.back()[60] ^= 1;
    failures.push_back(claiming(file, 900000, 900000));
    failures.push_back(claiming(file, 0, 7));
    failures.push_back(claiming(file, 9, 0));
    writePng(bad, noise(9, 7, 2));
    failures.push_back(bad.read());
    writePng(bad, 4, 4, PNG_COLOR_TYPE_PALETTE, 8, Bytes(16, 1));
    failures.push_back(bad.read());
    expectNoTraceOf<ImagePNG>(failures, -1, good, bad, picture.bottomUp());
}

/// Reads a picture with more chunks, which take little memory. \return the text on standard error
std::string errorsOfReadingWith(const Bytes& chunks)
{
    const Picture picture = noise(3, 2, 3);
    const TempPath path(".png");
    writePng(path, picture);
    path.write(withChunks(path.read(), chunks));
    ImagePNG image;
    const long before = peakOfMemory();
    const Outcome outcome = read(image, path.name());
    EXPECT_LT(peakOfMemory() - before, 64 * 1024);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(bytesOf(image), picture.bottomUp());
    return outcome.err;
}

TEST(ImagePNGTest, TextOfAnySizeIsSkipped)
{
    EXPECT_EQ(errorsOfReadingWith(compressedPngChunk("zTXt", 1024)), "");
    EXPECT_EQ(errorsOfReadingWith(repeated(100, compressedPngChunk("zTXt", 4))), "");
    EXPECT_EQ(errorsOfReadingWith(repeated(2000, pngChunk("tEXt", {'n', 'a', 'm', 'e', 0, 'x'}))),
              "");
}

TEST(ImagePNGTest, AColorProfileOfAnySizeIsSkipped)
{
    EXPECT_EQ(errorsOfReadingWith(compressedPngChunk("iCCP", 1024)),
              "libpng warning: iCCP: profile 'name': 2D2D2D2Dh: exceeds application limits\n");
}

TEST(ImagePNGTest, TheFileIsClosedWhateverHappens)
{
    const TempPath good(".png");
    const TempPath foreign(".png");
    const TempPath palette(".png");
    writePng(good, noise(3, 3, 3));
    writeJpeg(foreign, noise(3, 3, 3));
    writePng(palette, 2, 2, PNG_COLOR_TYPE_PALETTE, 8, {0, 1, 2, 3});
    ImagePNG image;
    for (const TempPath* path : {&good, &foreign, &palette}) {
        read(image, path->name());
        EXPECT_FALSE(path->isOpen());
    }
}

TEST(ImagePNGTest, KeepsACopyOfTheFileNameThatOutlivesTheImage)
{
    const TempPath path(".png");
    writePng(path, noise(2, 2, 3));
    expectNameThatOutlivesTheImage<ImagePNG>(path);
}

TEST(ImagePNGTest, FreeBufferReleasesTheBufferAndKeepsTheSizes)
{
    const TempPath path(".png");
    writePng(path, noise(2, 3, 3));
    expectFreeBufferToKeepTheSizes<ImagePNG>(path);
}

TEST(ImagePNGTest, WriteDoesNothing)
{
    const TempPath original(".png");
    const TempPath path(".png");
    writePng(original, noise(2, 2, 3));
    ImagePNG image;
    readWhole(image, original);
    const Outcome outcome = outcomeOf([&] { return image.write(path.name(), 90); });
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
    EXPECT_FALSE(path.exists());
}

} // namespace
