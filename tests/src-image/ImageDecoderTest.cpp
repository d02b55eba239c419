#include "ImageDecoder.h"

#include "ImageFile.h"

#include <gtest/gtest.h>

namespace {

// What the decoders of JPEG and PNG give is for ImageJPEGTest and ImagePNGTest.

TEST(ImageDecoderTest, OtherKindsOfFilesHaveNone)
{
    for (const int value : {-1, 2, 1000}) {
        const auto other = static_cast<IMAGE_TYPE>(value);
        EXPECT_EQ(newImageDecoder(other, {}), nullptr);
        EXPECT_EQ(ImageFile::uploadedComponents(other), 4u);
    }
}

TEST(ImageDecoderTest, ANewOneHasExceededNoLimit)
{
    for (const IMAGE_TYPE type : {IMAGE_JPEG, IMAGE_PNG}) {
        EXPECT_STREQ(newImageDecoder(type, {})->exceededLimit(), "");
    }
}

} // namespace
