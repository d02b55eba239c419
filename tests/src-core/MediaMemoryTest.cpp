// What makes GL objects of files, when memory runs out, wherever it does. The driver has enough.

#include "FreeType.h"
#include "ImageJPEG.h"
#include "ImagePNG.h"
#include "ObjAPI.h"
#include "Shader.h"
#include "Texture.h"

#include "FailingMemory.h"
#include "GLTest.h"
#include "ImageFiles.h"

#include <cstddef>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace {

using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

class MediaMemoryTest : public GLTest {
protected:
    void SetUp() override
    {
        GLTest::SetUp();
        CaptureStdout();
        CaptureStderr();
    }
    void TearDown() override
    {
        const std::string text = GetCapturedStdout() + GetCapturedStderr();
        if (HasFailure()) {
            std::fputs(text.c_str(), stdout); // where it says what failed
        }
        GLTest::TearDown();
    }

    /// Deletes what a texture keeps until the program ends.
    static void release(BasicImage* image)
    {
        if (image == nullptr) {
            return;
        }
        delete[] image->getSourceFile();
        if (image->getImageType() == IMAGE_PNG) {
            const std::unique_ptr<ImagePNG> png(static_cast<ImagePNG*>(image));
        } else {
            const std::unique_ptr<ImageJPEG> jpeg(static_cast<ImageJPEG*>(image));
        }
    }

    static GLint boundWidth()
    {
        GLint width = 0;
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
        return width;
    }
};

TEST_F(MediaMemoryTest, ATextureIsLoadedWithItsPictureOrWithout)
{
    const TempPath png(".png");
    const TempPath jpeg(".jpg");
    writePng(png, noise(20, 10, 4));
    writeJpeg(jpeg, noise(20, 10, 3));
    for (const IMAGE_TYPE kind : {IMAGE_PNG, IMAGE_JPEG}) {
        const TempPath& path = kind == IMAGE_PNG ? png : jpeg;
        std::optional<Texture> texture;
        expectNothingLost([&] {
            failEachAllocation(
                [&] {
                    texture.emplace(path.name(), kind).load();
                    return texture->isLoaded();
                },
                [&](bool isLoaded, bool complete) {
                    EXPECT_TRUE(isLoaded);
                    BasicImage* image = texture->getSource();
                    const bool hasPixels = image != nullptr && image->getPixelBuffer() != nullptr;
                    EXPECT_TRUE(hasPixels || !complete);
                    if (hasPixels) {
                        EXPECT_EQ(boundWidth(), 20);
                        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
                    }
                    glGetError(); // a picture without components is none that GL takes
                    glDeleteTextures(1, texture->getId());
                    release(image);
                });
        });
    }
}

TEST_F(MediaMemoryTest, AShaderIsMadeOrNot)
{
    const TempPath path(".vert");
    const std::string text = "void main() { gl_Position = ftransform(); }\n";
    path.write(Bytes(text.begin(), text.end()));
    struct Result {
        GLhandleARB handle;
        GLint compiled;
    };
    expectNothingLost([&] {
        failEachAllocation(
            [&] {
                Shader shader;
                Result result = {*shader.create(path.name(), GL_VERTEX_SHADER_ARB), 0};
                if (result.handle != 0) {
                    glGetObjectParameterivARB(result.handle, GL_OBJECT_COMPILE_STATUS_ARB,
                                              &result.compiled);
                }
                return result;
            },
            [&](const Result& result, bool complete) {
                if (result.handle != 0 || complete) {
                    EXPECT_NE(result.handle, 0u);
                    EXPECT_EQ(result.compiled, 1);
                }
                EXPECT_FALSE(path.isOpen());
            });
    });
}

TEST_F(MediaMemoryTest, AFontIsMadeOrThrowsAndCanBeCleaned)
{
    freetype::font_data font;
    font.init(KELPIX_FONT_FILE, 12); // fills what lives as long as the program
    font.clean();
    const std::size_t before = FailingMemory::blocks();
    failEachAllocation(
        [&] {
            try {
                font.init(KELPIX_FONT_FILE, 12);
            } catch (const std::exception&) {
                return false;
            }
            return true;
        },
        [&](bool isMade, bool complete) {
            if (isMade || complete) {
                ASSERT_TRUE(isMade);
                EXPECT_TRUE(glIsList(font.list_base + 127));
                EXPECT_TRUE(glIsTexture(font.textures[127]));
            }
            font.clean();
            EXPECT_EQ(font.textures, nullptr);
            EXPECT_EQ(font.list_base, 0u);
        });
    EXPECT_EQ(FailingMemory::blocks(), before);
}

TEST_F(MediaMemoryTest, AModelsPictureIsATextureOrLeftOut)
{
    const TempPath model(".obj");
    const TempPath library(".mtl");
    const auto fileName = [](const TempPath& path) {
        return std::filesystem::path(path.name()).filename().string();
    };
    for (const char* suffix : {".png", ".jpg"}) {
        const TempPath picture(suffix);
        // Sides that are no powers of two: GLU makes a copy that it scales.
        if (suffix == std::string(".png")) {
            writePng(picture, noise(20, 10, 3));
        } else {
            writeJpeg(picture, noise(20, 10, 3));
        }
        const std::string mtl = "newmtl m\nmap_Kd " + fileName(picture) + "\n";
        const std::string obj =
            "mtllib " + fileName(library) + "\nusemtl m\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";
        library.write(Bytes(mtl.begin(), mtl.end()));
        model.write(Bytes(obj.begin(), obj.end()));
        expectNothingLost([&] {
            failEachAllocation([&] { return obj_add_file(model.name()); },
                               [&](int fi, bool complete) {
                                   ASSERT_TRUE(fi >= 0 || !complete);
                                   if (fi >= 0) {
                                       if (obj_num_mtrl(fi) > 0 || complete) {
                                           const GLuint map = obj_get_mtrl_map(fi, 0, 0);
                                           EXPECT_TRUE((map == 0 && !complete) || glIsTexture(map));
                                       }
                                       obj_del_file(fi);
                                   }
                                   EXPECT_FALSE(picture.isOpen());
                                   glGetError();
                               });
        });
        EXPECT_EQ(obj_num_file(), 0);
    }
}

} // namespace
