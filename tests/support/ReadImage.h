#pragma once

#include "BasicImage.h"
#include "ImageFiles.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

/// What the tests of the image readers have in common. Image is ImageJPEG or ImagePNG.

template<typename Image>
std::size_t sizeOf(const Image& image)
{
    return static_cast<std::size_t>(image.w) * static_cast<std::size_t>(image.h) *
           static_cast<std::size_t>(image.c);
}

template<typename Image>
Bytes bytesOf(const Image& image)
{
    return {image.buffer, image.buffer + sizeOf(image)};
}

/// What an operation returns and prints.
struct Outcome {
    int status;
    std::string out;
    std::string err;
};

template<typename Operation>
Outcome outcomeOf(Operation operation)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = operation();
    const std::string err = testing::internal::GetCapturedStderr();
    return {status, testing::internal::GetCapturedStdout(), err};
}

inline Outcome read(BasicImage& image, const char* filename)
{
    return outcomeOf([&] { return image.read(filename); });
}

/// Reads a file that is whole, and says nothing.
inline void readWhole(BasicImage& image, const TempPath& path)
{
    const Outcome outcome = read(image, path.name());
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "");
}

template<typename Image>
void expectStartWithoutPicture(IMAGE_TYPE type)
{
    Image image;
    EXPECT_EQ(image.getPixelBuffer(), nullptr);
    EXPECT_EQ(image.getWidth(), 0);
    EXPECT_EQ(image.getHeight(), 0);
    EXPECT_EQ(image.getComponents(), 0);
    EXPECT_EQ(image.getSourceFile(), nullptr);
    EXPECT_EQ(image.getImageType(), type);
}

/// \param path  a file that is whole
template<typename Image>
void expectNameThatOutlivesTheImage(const TempPath& path)
{
    std::string given = path.name();
    char* name = nullptr;
    {
        Image image;
        ASSERT_EQ(image.read(given.c_str()), 1);
        given.assign(given.size(), 'x');
        EXPECT_STREQ(image.getSourceFile(), path.name());
        // A failed read is none to remember.
        read(image, given.c_str());
        name = image.getSourceFile();
    }
    EXPECT_STREQ(name, path.name());
    delete[] name;
}

/// \param path  a file that is whole
template<typename Image>
void expectFreeBufferToKeepTheSizes(const TempPath& path)
{
    Image image;
    readWhole(image, path);
    const auto sizes = std::pair(image.getWidth(), image.getHeight());
    EXPECT_GT(sizes, std::pair(0, 0));
    for (int i = 0; i < 2; ++i) {
        image.freeBuffer();
        EXPECT_EQ(image.getPixelBuffer(), nullptr);
        EXPECT_EQ(std::pair(image.getWidth(), image.getHeight()), sizes);
    }
}

/// Changes each byte of a file in turn.
/// \param failure  the status of a read that fails
template<typename Image>
void expectReadOrRefusedWithAnyByteChanged(const TempPath& path, int failure)
{
    const Bytes file = path.read();
    const int flips[] = {0x01, 0x80, 0xFF};
    for (std::size_t at = 0; at < file.size(); ++at) {
        Bytes damaged = file;
        damaged[at] = static_cast<unsigned char>(damaged[at] ^ flips[at % 3]);
        path.write(damaged);
        Image image;
        const int status = read(image, path.name()).status;
        EXPECT_TRUE(status == failure || status == 1);
        EXPECT_EQ(status == 1, image.sourceFile != nullptr);
        // Every byte that is promised can be read.
        const Bytes bytes = image.buffer != nullptr ? bytesOf(image) : Bytes{};
    }
}

/// Reads a file that is whole after each of the failures, by the same image.
/// \param expected  the pixels of the file
/// \param failure   the status of a read that fails
template<typename Image>
void expectNoTraceOf(const std::vector<Bytes>& failures, int failure, const TempPath& good,
                     const TempPath& bad, const Bytes& expected)
{
    Image fresh;
    readWhole(fresh, good);
    for (const Bytes& bytes : failures) {
        bad.write(bytes);
        Image image;
        // The second time the failure meets a picture.
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(read(image, bad.name()).status, failure);
            readWhole(image, good);
            EXPECT_EQ(image.w, fresh.w);
            EXPECT_EQ(image.h, fresh.h);
            EXPECT_EQ(image.c, fresh.c);
            EXPECT_EQ(bytesOf(image), expected);
            EXPECT_STREQ(image.sourceFile, good.name());
        }
    }
}
