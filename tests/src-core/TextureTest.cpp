#include "Texture.h"

#include "GLTest.h"
#include "ImageFiles.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <png.h>

namespace {

using testing::HasSubstr;
using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

struct Loaded {
    Texture* texture;
    std::string out;
    std::string err;
};

class TextureTest : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
    }
    void TearDown() override
    {
        glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
        glPixelStorei(GL_PACK_ALIGNMENT, 4);
        GLTest::TearDown();
    }

    /// A texture lives until the program ends, and so does what it loads.
    static Texture* newTexture(const char* name, IMAGE_TYPE format)
    {
        static auto* const textures = new std::vector<Texture*>;
        textures->push_back(new Texture(name, format));
        return textures->back();
    }

    static Loaded load(const char* name, IMAGE_TYPE format)
    {
        Loaded loaded{newTexture(name, format), "", ""};
        CaptureStdout();
        CaptureStderr();
        loaded.texture->load();
        loaded.err = GetCapturedStderr();
        loaded.out = GetCapturedStdout();
        return loaded;
    }

    static GLint levelParameter(GLenum what, GLint level = 0)
    {
        GLint value = -1;
        glGetTexLevelParameteriv(GL_TEXTURE_2D, level, what, &value);
        return value;
    }

    /// The bound texture's level 0 in its own channels.
    static Bytes texels(std::size_t width, std::size_t height, std::size_t channels)
    {
        const GLenum formats[] = {GL_RED, GL_NONE, GL_RGB, GL_RGBA};
        Bytes bytes(width * height * channels);
        glGetTexImage(GL_TEXTURE_2D, 0, formats[channels - 1], GL_UNSIGNED_BYTE, bytes.data());
        return bytes;
    }

    static void discardError() { glGetError(); }
};

/// What GL keeps of pixels that are handed over with \p stride bytes each, although they have
/// \p channels: the first channels of every stride-th byte, zeros behind the last pixel, and alpha
/// 1 when the pixels have none.
Bytes kept(const Bytes& pixels, std::size_t count, std::size_t channels, std::size_t stride)
{
    Bytes padded = pixels;
    padded.resize(std::max(pixels.size(), count * stride), 0);
    Bytes bytes;
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t k = 0; k < channels; ++k) {
            bytes.push_back(k < stride ? padded[i * stride + k] : static_cast<unsigned char>(255));
        }
    }
    return bytes;
}

TEST_F(TextureTest, ConstructionReadsAndPrintsNothing)
{
    CaptureStdout();
    CaptureStderr();
    const char name[] = "there is no such file.png";
    Texture texture(name, IMAGE_PNG);
    EXPECT_EQ(GetCapturedStderr(), "");
    EXPECT_EQ(GetCapturedStdout(), "");
    EXPECT_EQ(texture.imageFileName, name);
    EXPECT_EQ(texture.imageFormat, IMAGE_PNG);
    EXPECT_FALSE(texture.isLoaded());
    EXPECT_EQ(texture.getSource(), nullptr);
    EXPECT_EQ(*texture.getId(), 0u);
    EXPECT_EQ(std::vector<int>(texture.getInfo(), texture.getInfo() + 3), std::vector<int>(3, 0));
}

TEST_F(TextureTest, AccessorsPointIntoTheObject)
{
    Texture texture("a.png", IMAGE_PNG);
    EXPECT_EQ(texture.getId(), &texture.texId);
    EXPECT_EQ(texture.getInfo(), texture.imageInfo);
}

TEST_F(TextureTest, EveryKindAndComponentCountIsUploadedAsItsKind)
{
    for (const GLint alignment : {1, 4, 8}) {
        for (const std::size_t width : {1, 3, 5, 8}) {
            for (const std::size_t channels : {1, 3, 4}) {
                const std::size_t height = 3;
                glPixelStorei(GL_UNPACK_ALIGNMENT, alignment);

                const TempPath png(".png");
                const Picture picture = noise(width, height, channels);
                writePng(png, picture);
                Loaded loaded = load(png.name(), IMAGE_PNG);
                EXPECT_EQ(loaded.out, "loaded texture data.\n");
                EXPECT_EQ(loaded.err, "");
                EXPECT_EQ(levelParameter(GL_TEXTURE_WIDTH), static_cast<GLint>(width));
                EXPECT_EQ(levelParameter(GL_TEXTURE_HEIGHT), static_cast<GLint>(height));
                EXPECT_EQ(texels(width, height, channels),
                          kept(picture.bottomUp(), width * height, channels, 4))
                    << "PNG, " << channels << " components, width " << width;

                const TempPath jpeg(".jpg");
                writeJpeg(jpeg, picture);
                loaded = load(jpeg.name(), IMAGE_JPEG);
                EXPECT_EQ(loaded.out, "loaded texture data.\n");
                EXPECT_EQ(loaded.err, "");
                EXPECT_EQ(levelParameter(GL_TEXTURE_WIDTH), static_cast<GLint>(width));
                EXPECT_EQ(texels(width, height, channels),
                          kept(readJpeg(jpeg).bottomUp(), width * height, channels, 3))
                    << "JPEG, " << channels << " components, width " << width;

                EXPECT_EQ(getInteger(GL_UNPACK_ALIGNMENT), alignment);
            }
        }
    }
}

TEST_F(TextureTest, LoadLeavesTheTextureBoundWithLinearFiltersAndOneLevel)
{
    const TempPath path(".png");
    writePng(path, noise(4, 2, 3));
    Texture* texture = load(path.name(), IMAGE_PNG).texture;
    EXPECT_TRUE(texture->isLoaded());
    EXPECT_NE(texture->texId, 0u);
    EXPECT_EQ(getInteger(GL_TEXTURE_BINDING_2D), static_cast<GLint>(texture->texId));
    for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER}) {
        GLint value = 0;
        glGetTexParameteriv(GL_TEXTURE_2D, filter, &value);
        EXPECT_EQ(value, GL_LINEAR);
    }
    for (const GLenum wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T}) {
        GLint value = 0;
        glGetTexParameteriv(GL_TEXTURE_2D, wrap, &value);
        EXPECT_EQ(value, GL_REPEAT);
    }
    EXPECT_EQ(levelParameter(GL_TEXTURE_INTERNAL_FORMAT), 3);
    EXPECT_EQ(levelParameter(GL_TEXTURE_WIDTH, 1), 0);
}

TEST_F(TextureTest, LoadKeepsTheImageAndItsSizes)
{
    const TempPath path(".jpg");
    writeJpeg(path, noise(6, 5, 1));
    Texture* texture = load(path.name(), IMAGE_JPEG).texture;
    EXPECT_EQ(std::vector<int>(texture->getInfo(), texture->getInfo() + 3),
              (std::vector<int>{6, 5, 1}));
    BasicImage* image = texture->getSource();
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->getImageType(), IMAGE_JPEG);
    EXPECT_STREQ(image->getSourceFile(), path.name());
    const Bytes expected = readJpeg(path).bottomUp();
    EXPECT_EQ(Bytes(image->getPixelBuffer(), image->getPixelBuffer() + 30), expected);
}

TEST_F(TextureTest, TheLastRowOfTheFileIsDrawnAtTheBottom)
{
    const TempPath path(".png");
    writePng(path, {1, 2, 3, {255, 0, 0, 0, 0, 255}}); // red above blue
    load(path.name(), IMAGE_PNG);
    glEnable(GL_TEXTURE_2D);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    glBegin(GL_QUADS);
    for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {1, 1}, {0, 1}}) {
        glTexCoord2i(x, y);
        glVertex2i(2 * x - 1, 2 * y - 1);
    }
    glEnd();
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    EXPECT_EQ(pixel(370, 185), (Bytes{0, 0, 255, 255}));
}

TEST_F(TextureTest, AMissingJpegIsLoadedWithoutTheLoadedLine)
{
    const TempPath path(".jpg");
    const Loaded loaded = load(path.name(), IMAGE_JPEG);
    EXPECT_EQ(loaded.out, std::string("can't open ") + path.name() + "\n");
    EXPECT_EQ(loaded.err, "");
    EXPECT_TRUE(loaded.texture->isLoaded());
    EXPECT_NE(loaded.texture->texId, 0u);
    EXPECT_EQ(getInteger(GL_TEXTURE_BINDING_2D), static_cast<GLint>(loaded.texture->texId));
    EXPECT_EQ(loaded.texture->getInfo()[0], 0);
    ASSERT_NE(loaded.texture->getSource(), nullptr);
    EXPECT_EQ(loaded.texture->getSource()->getPixelBuffer(), nullptr);
    // 0 components are no internal format that GL takes.
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_VALUE));
}

TEST_F(TextureTest, AJpegThatFailsBehindItsPixelsIsUploaded)
{
    const TempPath path(".jpg");
    writeJpeg(path, noise(4, 3, 3));
    const Bytes expected = readJpeg(path).bottomUp();
    path.write(withTwoFrames(path.read()));
    const Loaded loaded = load(path.name(), IMAGE_JPEG);
    EXPECT_EQ(loaded.out, "");
    EXPECT_EQ(loaded.err, "Invalid JPEG file structure: two SOF markers\n");
    EXPECT_TRUE(loaded.texture->isLoaded());
    EXPECT_EQ(std::vector<int>(loaded.texture->getInfo(), loaded.texture->getInfo() + 3),
              (std::vector<int>{4, 3, 3}));
    EXPECT_EQ(texels(4, 3, 3), expected);
}

TEST_F(TextureTest, AMissingPngSaysThatItWasLoaded)
{
    const TempPath path(".png");
    const Loaded loaded = load(path.name(), IMAGE_PNG);
    EXPECT_EQ(loaded.out, "loaded texture data.\n");
    EXPECT_EQ(loaded.err, std::string("Can't open file ") + path.name() + "\n");
    EXPECT_TRUE(loaded.texture->isLoaded());
    EXPECT_NE(loaded.texture->texId, 0u);
    discardError();
}

TEST_F(TextureTest, APngThatIsNotSupportedIsLoadedWithoutPixels)
{
    const TempPath path(".png");
    writePng(path, 2, 2, PNG_COLOR_TYPE_PALETTE, 8, {0, 1, 2, 3});
    const Loaded loaded = load(path.name(), IMAGE_PNG);
    EXPECT_EQ(loaded.out, "loaded texture data.\n");
    EXPECT_EQ(loaded.err, "Unsupported color type!\n");
    EXPECT_EQ(std::vector<int>(loaded.texture->getInfo(), loaded.texture->getInfo() + 3),
              (std::vector<int>{2, 2, 0}));
    discardError();
}

TEST_F(TextureTest, AFileWithoutANameIsLoadedWithoutPixels)
{
    for (const IMAGE_TYPE format : {IMAGE_JPEG, IMAGE_PNG}) {
        EXPECT_TRUE(load(nullptr, format).texture->isLoaded());
        discardError();
    }
}

TEST_F(TextureTest, AnUnknownKindOnlyCountsAsLoaded)
{
    const Loaded loaded = load("a.png", static_cast<IMAGE_TYPE>(7));
    EXPECT_EQ(loaded.out, "");
    EXPECT_EQ(loaded.err, "");
    EXPECT_TRUE(loaded.texture->isLoaded());
    EXPECT_EQ(loaded.texture->texId, 0u);
    EXPECT_EQ(loaded.texture->getSource(), nullptr);
    EXPECT_EQ(getInteger(GL_TEXTURE_BINDING_2D), 0);
}

TEST_F(TextureTest, ASecondLoadMakesASecondTexture)
{
    const TempPath path(".png");
    writePng(path, noise(2, 2, 4));
    Texture* texture = load(path.name(), IMAGE_PNG).texture;
    const GLuint first = texture->texId;
    static BasicImage* const firstImage = texture->getSource(); // stays, nobody else has it now
    CaptureStdout();
    texture->load();
    EXPECT_EQ(GetCapturedStdout(), "loaded texture data.\n");
    EXPECT_NE(texture->texId, first);
    EXPECT_NE(texture->getSource(), firstImage);
    EXPECT_TRUE(glIsTexture(first));
}

} // namespace
