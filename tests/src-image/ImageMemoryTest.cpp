// The image readers and the writer when memory runs out, wherever it does.

#include "ImageJPEG.h"
#include "ImagePNG.h"

#include "FailingMemory.h"
#include "ImageFiles.h"

#include <optional>

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

/// Reads with each allocation failing. The result is the truth; every byte that is promised can be
/// read; nothing is lost and the file is closed. With enough memory the picture is there.
template<typename Image>
void readWithoutMemory(const TempPath& path, const Bytes& expected, int failure)
{
    std::optional<Image> image;
    CaptureStderr(); // the libraries say that there is no memory
    failEachAllocation([&] { return image.emplace().read(path.name()); },
                       [&](int status, bool complete) {
                           const auto size =
                               static_cast<std::size_t>(image->w * image->h * image->c);
                           const Bytes pixels = image->buffer == nullptr
                                                    ? Bytes{}
                                                    : Bytes(image->buffer, image->buffer + size);
                           EXPECT_EQ(image->sourceFile != nullptr, status == 1);
                           if (status == 1 || complete) {
                               EXPECT_EQ(status, 1);
                               EXPECT_EQ(pixels, expected);
                           } else {
                               EXPECT_EQ(status, failure);
                           }
                           EXPECT_FALSE(path.isOpen());
                           delete[] image->sourceFile;
                           image.reset();
                       });
    GetCapturedStderr();
}

TEST(ImageMemoryTest, AJpegIsReadWholeOrNotWhereverMemoryEnds)
{
    for (const JpegKind kind : {JpegKind::baseline, JpegKind::progressive}) {
        const TempPath path(".jpg");
        writeJpeg(path, noise(40, 30, 3), 80, kind);
        const Bytes expected = readJpeg(path).bottomUp();
        expectNothingLost([&] { readWithoutMemory<ImageJPEG>(path, expected, 0); });
    }
}

TEST(ImageMemoryTest, APngIsReadWholeOrNotWhereverMemoryEnds)
{
    for (const bool interlaced : {false, true}) {
        const TempPath path(".png");
        const Picture picture = noise(40, 30, 4);
        writePng(path, picture, interlaced);
        const Bytes expected = picture.bottomUp();
        expectNothingLost([&] { readWithoutMemory<ImagePNG>(path, expected, -1); });
    }
}

/// Reads a file twice into one image.
template<typename Image>
void readTwice(const TempPath& path)
{
    const FailingMemory counted(1000000, FailingMemory::ONCE);
    Image image;
    EXPECT_EQ(image.read(path.name()), 1);
    EXPECT_EQ(image.read(path.name()), 1);
    delete[] image.sourceFile;
}

TEST(ImageMemoryTest, ASecondReadFreesWhatTheFirstHasLeft)
{
    const TempPath jpeg(".jpg");
    writeJpeg(jpeg, noise(4, 3, 3), 80);
    expectNothingLost([&] { readTwice<ImageJPEG>(jpeg); });
    const TempPath png(".png");
    writePng(png, noise(4, 3, 3));
    expectNothingLost([&] { readTwice<ImagePNG>(png); });
}

TEST(ImageMemoryTest, AJpegIsWrittenWholeOrNotWhereverMemoryEnds)
{
    const TempPath original(".jpg");
    const TempPath path(".jpg");
    writeJpeg(original, noise(40, 30, 3), 80);
    ImageJPEG image;
    ASSERT_EQ(image.read(original.name()), 1);
    ASSERT_EQ(image.write(path.name(), 90), 1);
    const Bytes expected = path.read();

    expectNothingLost([&] {
        CaptureStderr();
        failEachAllocation([&] { return image.write(path.name(), 90); },
                           [&](int status, bool complete) {
                               if (status == 1 || complete) {
                                   EXPECT_EQ(status, 1);
                                   EXPECT_EQ(path.read(), expected);
                               } else {
                                   EXPECT_EQ(status, 0);
                               }
                               EXPECT_FALSE(path.isOpen());
                           });
        GetCapturedStderr();
    });
    delete[] image.sourceFile;
}

} // namespace
