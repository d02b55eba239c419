// The JPEG reader when it loses its file between two rows. The library's own source of bytes never
// does: it makes up the end of a file that breaks off.

#include "ImageJPEG.h"

#include "ImageFiles.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <jpeglib.h>

#include <jerror.h>

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

/// How often a source fills its buffer before it fails.
int fillings = 0;

boolean (*fillOnce)(j_decompress_ptr) = nullptr;

boolean fillOrFail(j_decompress_ptr jpeg)
{
    if (fillings-- <= 0) {
        ERREXIT(jpeg, JERR_FILE_READ);
    }
    return fillOnce(jpeg);
}

} // namespace

/// Replaces the library's function in this program.
extern "C" void jpeg_stdio_src(j_decompress_ptr jpeg, std::FILE* file)
{
    static const auto original =
        reinterpret_cast<decltype(&jpeg_stdio_src)>(dlsym(RTLD_NEXT, "jpeg_stdio_src"));
    original(jpeg, file);
    fillOnce = jpeg->src->fill_input_buffer;
    jpeg->src->fill_input_buffer = fillOrFail;
}

namespace {

TEST(ImageSourceTest, RowsThatWereNeverReadAreBlack)
{
    const TempPath path(".jpg");
    writeJpeg(path, noise(64, 512, 3));
    fillings = 1000;
    const Bytes whole = readJpeg(path).bottomUp();
    constexpr std::size_t ROW = 64 * 3;

    std::size_t previous = 0;
    for (const int available : {2, 4, 6}) {
        fillings = available;
        ImageJPEG image;
        CaptureStderr();
        const int status = image.read(path.name());
        EXPECT_EQ(GetCapturedStderr(), "Input file read error\n");
        EXPECT_EQ(status, 0);
        ASSERT_EQ(image.w, 64);
        ASSERT_EQ(image.h, 512);
        ASSERT_EQ(image.c, 3);
        const Bytes pixels(image.buffer, image.buffer + whole.size());
        const auto [read, expected] = std::mismatch(pixels.rbegin(), pixels.rend(), whole.rbegin());
        const auto rows = static_cast<std::size_t>(read - pixels.rbegin()) / ROW;
        EXPECT_GT(rows, previous);
        EXPECT_LT(rows, 512u);
        const std::size_t unread = whole.size() - rows * ROW;
        EXPECT_EQ(Bytes(image.buffer, image.buffer + unread), Bytes(unread, 0)) << rows;
        previous = rows;
    }
}

} // namespace
