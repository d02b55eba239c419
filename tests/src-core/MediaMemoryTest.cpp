// What makes GL objects of files, when memory runs out, wherever it does. The driver has enough.

#include "FreeType.h"
#include "ObjAPI.h"
#include "Shader.h"
#include "Texture.h"

#include "FailingMemory.h"
#include "GLTest.h"
#include "ImageFiles.h"

#include <exception>
#include <filesystem>
#include <optional>
#include <vector>

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
        GetCapturedStderr();
        GetCapturedStdout();
        GLTest::TearDown();
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
        failEachAllocation(
            [&] {
                texture.emplace(path.name(), kind).load();
                return texture->isLoaded();
            },
            [&](bool isLoaded) {
                EXPECT_TRUE(isLoaded);
                BasicImage* image = texture->getSource();
                const bool hasPixels = image != nullptr && image->getPixelBuffer() != nullptr;
                if (hasPixels) {
                    EXPECT_EQ(boundWidth(), 20);
                    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
                }
                glGetError(); // a picture without components is none that GL takes
                glDeleteTextures(1, texture->getId());
                if (image != nullptr) {
                    image->freeBuffer();
                    static auto* const images = new std::vector<BasicImage*>;
                    images->push_back(image); // nobody deletes an image
                }
            });
    }
}

TEST_F(MediaMemoryTest, AShaderIsMadeOrNot)
{
    const TempPath path(".vert");
    const std::string text = "void main() { gl_Position = ftransform(); }\n";
    path.write(Bytes(text.begin(), text.end()));
    failEachAllocation(
        [&] {
            Shader shader;
            GLint compiled = 1;
            if (*shader.create(path.name(), GL_VERTEX_SHADER_ARB) != 0) {
                glGetObjectParameterivARB(shader.getHandle(), GL_OBJECT_COMPILE_STATUS_ARB,
                                          &compiled);
            }
            return compiled;
        },
        [&](GLint compiled) {
            EXPECT_EQ(compiled, 1);
            EXPECT_FALSE(path.isOpen());
        });
}

TEST_F(MediaMemoryTest, AFontIsMadeOrThrowsAndCanBeCleaned)
{
    freetype::font_data font;
    failEachAllocation(
        [&] {
            try {
                font.init(KELPIX_FONT_FILE, 12);
            } catch (const std::exception&) {
                return false;
            }
            return true;
        },
        [&](bool isMade) {
            if (isMade) {
                EXPECT_TRUE(glIsList(font.list_base + 127));
                EXPECT_TRUE(glIsTexture(font.textures[127]));
            }
            font.clean();
            EXPECT_EQ(font.textures, nullptr);
            EXPECT_EQ(font.list_base, 0u);
        });
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
        failEachAllocation([&] { return obj_add_file(model.name()); },
                           [&](int fi) {
                               if (fi >= 0) {
                                   if (obj_num_mtrl(fi) > 0) {
                                       const GLuint map = obj_get_mtrl_map(fi, 0, 0);
                                       EXPECT_TRUE(map == 0 || glIsTexture(map));
                                   }
                                   obj_del_file(fi);
                               }
                               EXPECT_FALSE(picture.isOpen());
                               glGetError();
                           });
        EXPECT_EQ(obj_num_file(), 0);
    }
}

} // namespace
