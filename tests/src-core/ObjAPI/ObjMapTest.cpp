#include "ObjAPI.h"

#include "GLTest.h"
#include "ImageFiles.h"
#include "ObjModel.h"
#include "PeakOfMemory.h"

#include <cstdio>
#include <gmock/gmock.h>
#include <jpeglib.h>
#include <png.h>
#include <sys/stat.h>

namespace {

using testing::ElementsAre;

/// Pictures of files as textures.
class ObjMapTest : public GLTest, public ObjFixture {
protected:
    struct Png {
        int width = 0;
        int height = 0;
        int color_type = PNG_COLOR_TYPE_RGB;
        int depth = 8;
        int interlace = PNG_INTERLACE_NONE;
        Bytes rows = {}; ///< from the top, packed as the file wants them
    };

    std::string write_png(const std::string& name, const Png& picture) const
    {
        FILE* file = fopen(path(name).c_str(), "wb");
        png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
        png_infop info = png_create_info_struct(png);
        png_init_io(png, file);
        png_set_IHDR(png, info, static_cast<png_uint_32>(picture.width),
                     static_cast<png_uint_32>(picture.height), picture.depth, picture.color_type,
                     picture.interlace, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        if (picture.color_type == PNG_COLOR_TYPE_PALETTE) {
            const png_color palette[2] = {{255, 0, 0}, {0, 0, 255}};
            png_set_PLTE(png, info, palette, 2);
        }
        Bytes rows = picture.rows;
        const std::size_t stride = rows.size() / static_cast<std::size_t>(picture.height);
        std::vector<png_bytep> pointers;
        for (std::size_t y = 0; y < static_cast<std::size_t>(picture.height); ++y) {
            pointers.push_back(rows.data() + y * stride);
        }
        png_set_rows(png, info, pointers.data());
        png_write_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
        png_destroy_write_struct(&png, &info);
        fclose(file);
        return path(name);
    }

    /// \param scans  progressive: each coefficient in so many scans of its own; 0 = baseline
    std::string write_jpeg(const std::string& name, int width, int height, int components,
                           const Bytes& rows, int scans = 0) const
    {
        FILE* file = fopen(path(name).c_str(), "wb");
        jpeg_compress_struct jpeg = {};
        jpeg_error_mgr errors;
        jpeg.err = jpeg_std_error(&errors);
        jpeg_create_compress(&jpeg);
        jpeg_stdio_dest(&jpeg, file);
        jpeg.image_width = static_cast<JDIMENSION>(width);
        jpeg.image_height = static_cast<JDIMENSION>(height);
        jpeg.input_components = components;
        jpeg.in_color_space = components == 1   ? JCS_GRAYSCALE
                              : components == 3 ? JCS_RGB
                                                : JCS_CMYK;
        jpeg_set_defaults(&jpeg);
        jpeg_set_quality(&jpeg, 100, TRUE);
        std::vector<jpeg_scan_info> script = {{1, {0, 0, 0, 0}, 0, 0, 0, 0}};
        for (int k = 1; k < 64 && scans > 0; ++k) {
            for (int low = scans - 1; low >= 0; --low) {
                script.push_back({1, {0, 0, 0, 0}, k, k, low == scans - 1 ? 0 : low + 1, low});
            }
        }
        if (scans > 0) {
            jpeg.scan_info = script.data();
            jpeg.num_scans = static_cast<int>(script.size());
        }
        jpeg_start_compress(&jpeg, TRUE);
        Bytes copy = rows;
        const std::size_t stride = static_cast<std::size_t>(width * components);
        for (std::size_t y = 0; y < static_cast<std::size_t>(height); ++y) {
            JSAMPROW row = copy.data() + y * stride;
            jpeg_write_scanlines(&jpeg, &row, 1);
        }
        jpeg_finish_compress(&jpeg);
        jpeg_destroy_compress(&jpeg);
        fclose(file);
        return path(name);
    }

    /// The texture of a picture.
    static GLuint texture(const std::string& file)
    {
        const int fi = obj_add_file(nullptr);
        obj_set_mtrl_map(fi, obj_add_mtrl(fi), 0, file.c_str());
        return obj_get_mtrl_map(fi, 0, 0);
    }

    /// A level of the bound texture in \p format.
    static Bytes image(GLenum format, std::size_t bytes, GLint level = 0)
    {
        Bytes got(bytes);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glGetTexImage(GL_TEXTURE_2D, level, format, GL_UNSIGNED_BYTE, got.data());
        glPixelStorei(GL_PACK_ALIGNMENT, 4);
        return got;
    }

    static GLint level(GLenum what, GLint number = 0)
    {
        GLint value = -1;
        glGetTexLevelParameteriv(GL_TEXTURE_2D, number, what, &value);
        return value;
    }

    static GLint parameter(GLenum what)
    {
        GLint value = -1;
        glGetTexParameteriv(GL_TEXTURE_2D, what, &value);
        return value;
    }
};

TEST_F(ObjMapTest, AnRgbPngIsStoredBottomRowFirst)
{
    const Bytes rows = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    const GLuint name = texture(write_png("t.png", {.width = 2, .height = 2, .rows = rows}));
    ASSERT_NE(name, 0U);
    EXPECT_EQ(getInteger(GL_TEXTURE_BINDING_2D), static_cast<GLint>(name));
    EXPECT_EQ(level(GL_TEXTURE_INTERNAL_FORMAT), static_cast<GLint>(GL_RGB));
    EXPECT_THAT(image(GL_RGB, 12), ElementsAre(7, 8, 9, 10, 11, 12, 1, 2, 3, 4, 5, 6));
}

TEST_F(ObjMapTest, ThereAreAllMipmapLevelsAndLinearFilters)
{
    texture(write_png("t.png", {.width = 8, .height = 2, .rows = Bytes(8 * 2 * 3, 100)}));
    EXPECT_EQ(level(GL_TEXTURE_WIDTH, 3), 1);
    EXPECT_EQ(level(GL_TEXTURE_HEIGHT, 3), 1);
    EXPECT_EQ(level(GL_TEXTURE_WIDTH, 4), 0);
    EXPECT_THAT(image(GL_RGB, 3, 3), testing::Each(100));
    EXPECT_EQ(parameter(GL_TEXTURE_MAG_FILTER), GL_LINEAR);
    EXPECT_EQ(parameter(GL_TEXTURE_MIN_FILTER), GL_LINEAR_MIPMAP_LINEAR);
}

TEST_F(ObjMapTest, TheNumberOfComponentsTellsTheFormat)
{
    texture(write_png("g.png", {1, 1, PNG_COLOR_TYPE_GRAY, 8, 0, {77}}));
    EXPECT_EQ(level(GL_TEXTURE_INTERNAL_FORMAT), static_cast<GLint>(GL_LUMINANCE));
    EXPECT_THAT(image(GL_LUMINANCE, 1), ElementsAre(77));
    texture(write_png("ga.png", {1, 1, PNG_COLOR_TYPE_GRAY_ALPHA, 8, 0, {77, 88}}));
    EXPECT_EQ(level(GL_TEXTURE_INTERNAL_FORMAT), static_cast<GLint>(GL_LUMINANCE_ALPHA));
    EXPECT_THAT(image(GL_LUMINANCE_ALPHA, 2), ElementsAre(77, 88));
    texture(write_png("rgba.png", {1, 1, PNG_COLOR_TYPE_RGB_ALPHA, 8, 0, {1, 2, 3, 4}}));
    EXPECT_EQ(level(GL_TEXTURE_INTERNAL_FORMAT), static_cast<GLint>(GL_RGBA));
    EXPECT_THAT(image(GL_RGBA, 4), ElementsAre(1, 2, 3, 4));
}

TEST_F(ObjMapTest, SamplesOf16BitsAreCutAndSmallOnesAreUnpackedUnscaled)
{
    texture(write_png("16.png", {1, 1, PNG_COLOR_TYPE_RGB, 16, 0, {10, 255, 20, 255, 30, 255}}));
    EXPECT_THAT(image(GL_RGB, 3), ElementsAre(10, 20, 30));
    texture(write_png("1.png", {8, 1, PNG_COLOR_TYPE_GRAY, 1, 0, {0xA1}}));
    EXPECT_THAT(image(GL_LUMINANCE, 8), ElementsAre(1, 0, 1, 0, 0, 0, 0, 1));
    texture(write_png("4.png", {2, 1, PNG_COLOR_TYPE_GRAY, 4, 0, {0xF3}}));
    EXPECT_THAT(image(GL_LUMINANCE, 2), ElementsAre(15, 3));
}

TEST_F(ObjMapTest, AnInterlacedPngIsTheSamePicture)
{
    Bytes rows;
    for (int i = 0; i < 16 * 16 * 3; ++i) {
        rows.push_back(static_cast<unsigned char>(i * 7));
    }
    texture(write_png("plain.png", {.width = 16, .height = 16, .rows = rows}));
    const Bytes expected = image(GL_RGB, rows.size());
    texture(
        write_png("interlaced.png", {16, 16, PNG_COLOR_TYPE_RGB, 8, PNG_INTERLACE_ADAM7, rows}));
    EXPECT_EQ(image(GL_RGB, rows.size()), expected);
}

TEST_F(ObjMapTest, AJpegIsStoredBottomRowFirst)
{
    Bytes rows;
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x) {
            const auto top = static_cast<unsigned char>(y < 8 ? 255 : 0);
            rows.insert(rows.end(), {top, 0, 0});
        }
    }
    texture(write_jpeg("t.jpg", 16, 16, 3, rows));
    EXPECT_EQ(level(GL_TEXTURE_INTERNAL_FORMAT), static_cast<GLint>(GL_RGB));
    const Bytes got = image(GL_RGB, rows.size());
    EXPECT_LT(got[0], 10);
    EXPECT_GT(got[16 * 15 * 3], 245);

    texture(write_jpeg("g.jpg", 8, 8, 1, Bytes(64, 200)));
    EXPECT_EQ(level(GL_TEXTURE_INTERNAL_FORMAT), static_cast<GLint>(GL_LUMINANCE));
    EXPECT_NEAR(image(GL_LUMINANCE, 64)[0], 200, 2);
    texture(write_jpeg("cmyk.jpg", 8, 8, 4, Bytes(256, 200)));
    EXPECT_EQ(level(GL_TEXTURE_INTERNAL_FORMAT), static_cast<GLint>(GL_RGBA));
}

TEST_F(ObjMapTest, RowsOfOddLengthAreReadTightly)
{
    // 3 x 5 is scaled to a power of two; a row of 9 bytes taken for one of 12 would bring colors
    // of other places in, and read past the end.
    glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 100);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 7);
    Bytes rows;
    for (int i = 0; i < 15; ++i) {
        rows.insert(rows.end(), {10, 200, 90});
    }
    texture(write_png("t.png", {.width = 3, .height = 5, .rows = rows}));
    const Bytes got = image(GL_RGB, 4 * 4 * 3);
    for (std::size_t i = 0; i < got.size(); i += 3) {
        EXPECT_NEAR(got[i], 10, 1);
        EXPECT_NEAR(got[i + 1], 200, 1);
        EXPECT_NEAR(got[i + 2], 90, 1);
    }
    EXPECT_EQ(getInteger(GL_UNPACK_ALIGNMENT), 8);
    EXPECT_EQ(getInteger(GL_UNPACK_ROW_LENGTH), 100);
    EXPECT_EQ(getInteger(GL_UNPACK_SKIP_ROWS), 7);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
}

TEST_F(ObjMapTest, APaletteGivesATextureWithoutAnImage)
{
    const GLuint name = texture(write_png("p.png", {8, 1, PNG_COLOR_TYPE_PALETTE, 1, 0, {0xA1}}));
    EXPECT_NE(name, 0U);
    EXPECT_EQ(level(GL_TEXTURE_WIDTH), 0);
}

TEST_F(ObjMapTest, TheLastFourCharactersTellTheKind)
{
    const std::string png = write_png("a.png", {.width = 1, .height = 1, .rows = {1, 2, 3}});
    const std::string jpeg = write_jpeg("a.jpg", 8, 8, 1, Bytes(64, 0));
    const auto copied = [this](const std::string& from, const std::string& name) {
        std::filesystem::copy_file(from, path(name));
        return path(name);
    };
    EXPECT_NE(texture(copied(png, "b.PNG")), 0U);
    EXPECT_NE(texture(copied(jpeg, "b.JPG")), 0U);
    EXPECT_NE(texture(copied(png, ".png")), 0U);
    for (const char* name : {"c.Png", "c.tga", "c", "png", "c.png2", "c.jpeg"}) {
        EXPECT_EQ(texture(copied(png, name)), 0U) << name;
    }
    EXPECT_EQ(texture(copied(png, "d.jpg")), 0U); // not what it says
    EXPECT_EQ(texture(copied(jpeg, "d.png")), 0U);
    EXPECT_EQ(texture("png"), 0U);
    EXPECT_EQ(texture(""), 0U);
}

TEST_F(ObjMapTest, DamagedPicturesGiveNoTexture)
{
    write_png("a.png", {.width = 64, .height = 64, .rows = Bytes(64 * 64 * 3, 5)});
    write_jpeg("a.jpg", 64, 64, 3, Bytes(64 * 64 * 3, 5));
    for (const char* kind : {"png", "jpg"}) {
        const std::string whole = read(std::string("a.") + kind);
        for (const std::size_t size :
             {std::size_t{0}, std::size_t{1}, std::size_t{8}, std::size_t{20}, whole.size() / 2}) {
            const std::string file = write(std::string("cut.") + kind, whole.substr(0, size));
            const GLuint name = texture(file);
            if (size < whole.size() / 2 || std::string(kind) == "png") {
                EXPECT_EQ(name, 0U) << file << ' ' << size;
            }
        }
        for (std::size_t at = 0; at < whole.size(); at += whole.size() / 60 + 1) {
            std::string damaged = whole;
            damaged[at] = static_cast<char>(~damaged[at]);
            texture(write(std::string("damaged.") + kind, damaged)); // whatever comes of it
        }
    }
    EXPECT_EQ(texture(write("text.jpg", "not a picture\n")), 0U);
    EXPECT_EQ(texture(write("text.png", "not a picture\n")), 0U);
    std::filesystem::create_directory(path("folder.png"));
    EXPECT_EQ(texture(path("folder.png")), 0U);
}

TEST_F(ObjMapTest, APipeIsNoPictureAndIsNotWaitedFor)
{
    for (const char* name : {"pipe.png", "pipe.jpg"}) {
        ASSERT_EQ(mkfifo(path(name).c_str(), 0600), 0);
        EXPECT_EQ(texture(path(name)), 0U) << name;
    }
}

TEST_F(ObjMapTest, ADamagedJpegIsReportedInTheWordsOfItsLibrary)
{
    write_jpeg("a.jpg", 64, 64, 3, Bytes(64 * 64 * 3, 5));
    const std::string whole = read("a.jpg");
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const GLuint text = texture(write("text.jpg", "not a picture\n"));
    const GLuint cut = texture(write("cut.jpg", whole.substr(0, whole.size() - 20)));
    texture(write_jpeg("127.jpg", 16, 16, 1, Bytes(256, 5), 2)); // too many scans are no damage
    texture(write("text.png", "not a picture\n"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Not a JPEG file: starts with 0x6e 0x6f\n"
                                                      "Premature end of JPEG file\n");
    EXPECT_EQ(text, 0U);
    EXPECT_NE(cut, 0U); // what is missing is gray
}

TEST_F(ObjMapTest, APictureThatIsTooLargeGivesNoTexture)
{
    // A header that announces 1,000,000 x 1,000,000 pixels, and a JPEG that announces 32,768 x
    // 32,768 pixels of one byte: 1 GiB, of which the missing ones would be gray.
    write_png("a.png", {.width = 1, .height = 1, .rows = {1, 2, 3}});
    std::string png = read("a.png");
    png.replace(16, 8, std::string("\x00\x0F\x42\x40\x00\x0F\x42\x40", 8));
    // The checksum of the header, over its type and its 13 bytes.
    std::uint32_t sum = 0xFFFFFFFFU;
    for (std::size_t i = 12; i < 29; ++i) {
        sum ^= static_cast<unsigned char>(png[i]);
        for (int bit = 0; bit < 8; ++bit) {
            sum = sum >> 1 ^ ((sum & 1) != 0 ? 0xEDB88320U : 0);
        }
    }
    for (std::size_t i = 0; i < 4; ++i) {
        png[29 + i] = static_cast<char>(~sum >> (24 - 8 * i));
    }
    EXPECT_EQ(texture(write("huge.png", png)), 0U);

    write_jpeg("a.jpg", 8, 8, 1, Bytes(64, 5));
    std::string jpeg = read("a.jpg");
    const std::size_t frame = jpeg.find("\xFF\xC0");
    ASSERT_NE(frame, std::string::npos);
    jpeg.replace(frame + 5, 4, std::string("\x80\x00\x80\x00", 4));
    EXPECT_EQ(texture(write("huge.jpg", jpeg)), 0U);
}

TEST_F(ObjMapTest, TextOfAnySizeInAPngIsSkipped)
{
    const TempPath png(".png");
    writePng(png, noise(4, 4, 3));
    png.write(withChunks(png.read(), repeated(100, compressedPngChunk("zTXt", 4))));
    const long before = peakOfMemory();
    EXPECT_NE(texture(png.name()), 0U);
    EXPECT_LT(peakOfMemory() - before, 64 * 1024);
}

TEST_F(ObjMapTest, AJpegOfTooManyScansGivesNoTexture)
{
    EXPECT_NE(texture(write_jpeg("64.jpg", 16, 16, 1, Bytes(256, 5), 1)), 0U);
    EXPECT_EQ(texture(write_jpeg("127.jpg", 16, 16, 1, Bytes(256, 5), 2)), 0U);
}

TEST_F(ObjMapTest, AMapReplacesTheOneBeforeIt)
{
    const std::string file = write_png("a.png", {.width = 1, .height = 1, .rows = {1, 2, 3}});
    const int fi = obj_add_file(nullptr);
    obj_add_mtrl(fi);
    for (int ki = 0; ki < 5; ++ki) {
        obj_set_mtrl_map(fi, 0, ki, file.c_str());
        const GLuint first = obj_get_mtrl_map(fi, 0, ki);
        ASSERT_TRUE(glIsTexture(first));
        obj_set_mtrl_map(fi, 0, ki, "gone.png");
        EXPECT_FALSE(glIsTexture(first));
        EXPECT_EQ(obj_get_mtrl_map(fi, 0, ki), 0U);
    }
}

TEST_F(ObjMapTest, DeletingAMaterialKeepsTheTextureOfTheShininess)
{
    const std::string file = write_png("a.png", {.width = 1, .height = 1, .rows = {1, 2, 3}});
    for (const bool whole_file : {false, true}) {
        const int fi = obj_add_file(nullptr);
        obj_add_mtrl(fi);
        GLuint names[5];
        for (int ki = 0; ki < 5; ++ki) {
            obj_set_mtrl_map(fi, 0, ki, file.c_str());
            names[ki] = obj_get_mtrl_map(fi, 0, ki);
        }
        if (whole_file) {
            obj_del_file(fi);
        } else {
            obj_del_mtrl(fi, 0);
        }
        for (int ki = 0; ki < 4; ++ki) {
            EXPECT_FALSE(glIsTexture(names[ki]));
        }
        EXPECT_TRUE(glIsTexture(names[4]));
        glDeleteTextures(1, &names[4]);
    }
}

TEST_F(ObjMapTest, AModelsPicturesLieInItsDirectory)
{
    std::filesystem::create_directory(path("deep"));
    write_png("deep/tex.png", {.width = 1, .height = 1, .rows = {9, 8, 7}});
    std::filesystem::copy_file(path("deep/tex.png"), path("deep/tex.tga")); // the name decides
    write("deep/m.mtl", "newmtl a\nmap_Kd -s 2 2 1 tex.png\nmap_Ka tex.tga\nmap_Ks gone.png\n");
    write("deep/m.obj", "mtllib m.mtl\nv 0 0 0\nusemtl a\nf 1 1 1\nusemtl a\nf 1 1 1\n");
    const int fi = obj_add_file(path("deep/m.obj").c_str());
    const GLuint name = obj_get_mtrl_map(fi, 0, 0);
    EXPECT_NE(name, 0U);
    glBindTexture(GL_TEXTURE_2D, name);
    EXPECT_THAT(image(GL_RGB, 3), ElementsAre(9, 8, 7));
    EXPECT_EQ(obj_get_mtrl_map(fi, 0, 1), 0U);
    EXPECT_EQ(obj_get_mtrl_map(fi, 0, 3), 0U);
    EXPECT_STREQ(obj::prop(fi, 0, 0)->str, "tex.png"); // what the writer writes
    EXPECT_TRUE(glIsTexture(obj_get_mtrl_map(fi, 1, 0)));
    EXPECT_NE(obj_get_mtrl_map(fi, 1, 0), name); // a material has textures of its own
}

TEST_F(ObjMapTest, OfAMaterialsTwoMapsOfOneKindTheLastIsRead)
{
    write("bad.jpg", "not a picture\n"); // it would be reported
    write_png("good.png", {.width = 1, .height = 1, .rows = {9, 8, 7}});
    write("m.mtl", "newmtl a\nmap_Kd bad.jpg\nmap_Kd good.png\n");
    write("m.obj", "mtllib m.mtl\nv 0 0 0\nusemtl a\nf 1 1 1\n");
    testing::internal::CaptureStderr();
    const int fi = obj_add_file(path("m.obj").c_str());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_NE(obj_get_mtrl_map(fi, 0, 0), 0U);
}

TEST_F(ObjMapTest, MakingATextureAsksTheGLFirst)
{
    GL_is_initialized = false;
    texture(write_png("a.png", {.width = 1, .height = 1, .rows = {9, 8, 7}}));
    EXPECT_TRUE(GL_is_initialized);
}

} // namespace
