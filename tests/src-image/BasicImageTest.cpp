#include "BasicImage.h"

#include "ImageJPEG.h"
#include "ImagePNG.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

/// A picture whose bytes are 1, 2, 3, ...: none is 0.
Bytes counting(int width, int height, int comp)
{
    Bytes bytes;
    for (int i = 0; i < width * height * comp; ++i) {
        bytes.push_back(static_cast<unsigned char>(i % 255 + 1));
    }
    return bytes;
}

struct Result {
    int status;
    Bytes copy;
    std::string output;
};

/// Cuts a window out of the counting picture, into bytes that were all 99.
Result cut(int width, int height, int comp, int x, int y, int w, int h, float scale)
{
    const Bytes in = counting(width, height, comp);
    Result result{0, Bytes(static_cast<std::size_t>(w * h * comp), 99), ""};
    testing::internal::CaptureStdout();
    result.status = BasicImage::getSubImage(in.data(), width, height, result.copy.data(), x, y, w,
                                            h, comp, scale);
    result.output = testing::internal::GetCapturedStdout();
    return result;
}

TEST(BasicImageTest, TheKindsHaveFixedValues)
{
    EXPECT_EQ(IMAGE_JPEG, 0);
    EXPECT_EQ(IMAGE_PNG, 1);
    EXPECT_EQ(ImageJPEG().getImageType(), IMAGE_JPEG);
    EXPECT_EQ(ImagePNG().getImageType(), IMAGE_PNG);
}

/// The slot of a virtual operation: the Itanium C++ ABI stores 1 plus its offset in the pointer.
template<typename Operation>
std::size_t slotOf(Operation operation)
{
    std::size_t offset = 0;
    std::memcpy(&offset, &operation, sizeof offset);
    return (offset - 1) / sizeof(void*) + 1;
}

TEST(BasicImageTest, TheVirtualOperationsKeepTheirSlots)
{
    EXPECT_EQ(slotOf(&BasicImage::read), 1u);
    EXPECT_EQ(slotOf(&BasicImage::write), 2u);
    EXPECT_EQ(slotOf(&BasicImage::getPixelBuffer), 3u);
    EXPECT_EQ(slotOf(&BasicImage::getWidth), 4u);
    EXPECT_EQ(slotOf(&BasicImage::getHeight), 5u);
    EXPECT_EQ(slotOf(&BasicImage::getComponents), 6u);
    EXPECT_EQ(slotOf(&BasicImage::freeBuffer), 7u);
    EXPECT_EQ(slotOf(&BasicImage::getSourceFile), 8u);
    EXPECT_EQ(slotOf(&BasicImage::getImageType), 9u);
}

TEST(GetSubImageTest, ScaleOneCopiesTheWindow)
{
    const Result result = cut(4, 3, 1, 1, 1, 2, 2, 1);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.copy, (Bytes{6, 7, 10, 11}));
    EXPECT_EQ(result.output, "");
}

TEST(GetSubImageTest, ChannelsStayTogether)
{
    EXPECT_EQ(cut(3, 2, 3, 1, 0, 2, 1, 1).copy, (Bytes{4, 5, 6, 7, 8, 9}));
}

TEST(GetSubImageTest, BytesPastTheRightAndTopEdgesAre0)
{
    EXPECT_EQ(cut(3, 2, 1, 2, 1, 2, 2, 1).copy, (Bytes{6, 0, 0, 0}));
}

TEST(GetSubImageTest, AWholeScaleSkipsPixels)
{
    EXPECT_EQ(cut(5, 5, 1, 0, 1, 2, 2, 2).copy, (Bytes{6, 8, 16, 18}));
}

TEST(GetSubImageTest, TheScaleIsCutToAWholeStride)
{
    EXPECT_EQ(cut(30, 1, 1, 0, 0, 10, 1, 1.5f).copy, counting(10, 1, 1));
    EXPECT_EQ(cut(30, 1, 1, 0, 0, 10, 1, 2.9f).copy, (Bytes{1, 3, 5, 7, 9, 11, 13, 15, 17, 19}));
    // Less than one pixel a step: the first pixel again and again.
    EXPECT_EQ(cut(4, 4, 1, 1, 1, 2, 2, 0.9f).copy, (Bytes{6, 6, 6, 6}));
}

TEST(GetSubImageTest, ScaleZeroIsRefused)
{
    for (const float scale : {0.0f, -0.0f}) {
        const Result result = cut(2, 2, 1, 5, 5, 1, 1, scale);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.output, "Scale = 0! returning\n");
        EXPECT_EQ(result.copy, Bytes{99});
    }
}

TEST(GetSubImageTest, AStartOutsideThePictureIsRefused)
{
    for (const int x : {-1, 7, 8}) {
        const Result result = cut(7, 5, 1, x, 9, 1, 1, 1);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.output, "Start x not in picture bounds. pic width 7!\n");
        EXPECT_EQ(result.copy, Bytes{99});
    }
    for (const int y : {-1, 5, 6}) {
        const Result result = cut(7, 5, 1, 6, y, 1, 1, 1);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.output, "Start y not in picture bounds! pic height 5!\n");
        EXPECT_EQ(result.copy, Bytes{99});
    }
}

TEST(GetSubImageTest, AnEmptyWindowLeavesNothingToDo)
{
    const Bytes in = counting(2, 2, 1);
    Bytes copy{99};
    EXPECT_EQ(BasicImage::getSubImage(in.data(), 2, 2, copy.data(), 0, 0, 0, 1, 1, 1), 1);
    EXPECT_EQ(BasicImage::getSubImage(in.data(), 2, 2, copy.data(), 0, 0, 1, -3, 1, 1), 1);
    EXPECT_EQ(BasicImage::getSubImage(in.data(), 2, 2, copy.data(), 0, 0, 1, 1, 0, 1), 1);
    EXPECT_EQ(BasicImage::getSubImage(in.data(), 2, 2, copy.data(), 2, 0, 0, 0, 0, 1), 0);
    EXPECT_EQ(copy, Bytes{99});
}

TEST(GetSubImageTest, AScaleThatIsNoFiniteNumberDoesNotStep)
{
    for (const float scale : {std::numeric_limits<float>::infinity(),
                              -std::numeric_limits<float>::infinity(), std::nanf("")}) {
        EXPECT_EQ(cut(3, 3, 1, 1, 1, 2, 2, scale).copy, (Bytes{5, 5, 5, 5}));
    }
}

TEST(GetSubImageTest, AHugeScaleStepsOutOfThePicture)
{
    for (const float scale : {3e9f, 3e38f, -3e9f, -3e38f}) {
        EXPECT_EQ(cut(3, 3, 1, 1, 1, 2, 2, scale).copy, (Bytes{5, 0, 0, 0})) << scale;
    }
    // 65536 pixels in steps of 32768 are 2^31 pixels, of which an int holds all but one: the steps
    // are one shorter.
    EXPECT_EQ(cut(32768, 1, 1, 0, 0, 65536, 1, 32768).copy[1], 32767 % 255 + 1);
}

TEST(GetSubImageTest, ANegativeScaleStepsTowardsTheOriginAndNoFurther)
{
    EXPECT_EQ(cut(3, 3, 1, 2, 1, 3, 3, -1).copy, (Bytes{6, 5, 4, 3, 2, 1, 0, 0, 0}));
    EXPECT_EQ(cut(3, 3, 1, 1, 0, 3, 1, -1).copy, (Bytes{2, 1, 0}));
}

TEST(GetSubImageTest, APictureWithoutPixelsIsBlack)
{
    Bytes copy(4, 99);
    EXPECT_EQ(BasicImage::getSubImage(nullptr, 2, 2, copy.data(), 0, 0, 2, 2, 1, 1), 1);
    EXPECT_EQ(copy, Bytes(4, 0));
}

TEST(GetSubImageTest, EqualsThePlainFormula)
{
    std::mt19937 random(1);
    const auto upTo = [&random](int most) { return static_cast<int>(random() % (most + 1u)); };
    for (int n = 0; n < 2000; ++n) {
        const int width = 1 + upTo(9);
        const int height = 1 + upTo(9);
        const int comp = 1 + upTo(3);
        const int x = upTo(width - 1);
        const int y = upTo(height - 1);
        const int w = 1 + upTo(9);
        const int h = 1 + upTo(9);
        const float scale = 0.25f * static_cast<float>(1 + upTo(14));

        const Bytes in = counting(width, height, comp);
        Bytes expected(static_cast<std::size_t>(w * h * comp), 0);
        const int skipX = static_cast<int>(static_cast<float>(w) * scale) / w;
        const int skipY = static_cast<int>(static_cast<float>(h) * scale) / h;
        for (int j = 0; j < h; ++j) {
            const int sy = j * skipY + y;
            for (int i = 0; i < w; ++i) {
                const int sx = i * skipX;
                for (int k = 0; k < comp; ++k) {
                    if (sy < height && sx + x < width) {
                        expected[static_cast<std::size_t>((j * w + i) * comp + k)] =
                            in[static_cast<std::size_t>((sx + sy * width + x) * comp + k)];
                    }
                }
            }
        }
        const Result result = cut(width, height, comp, x, y, w, h, scale);
        ASSERT_EQ(result.status, 1);
        ASSERT_EQ(result.copy, expected);
    }
}

} // namespace
