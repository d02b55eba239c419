#include "ImageFiles.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <random>
#include <system_error>
#include <unistd.h>

#include <jpeglib.h>
#include <png.h>
#include <zlib.h>

namespace {

struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Close>;

/// The libraries' default error handling ends the process here, which ends the test.
File open(const TempPath& path, const char* mode)
{
    File file(std::fopen(path.name(), mode));
    if (file == nullptr) {
        ADD_FAILURE() << "cannot open " << path.name();
    }
    return file;
}

/// Dashes, compressed: \p count times 1 MiB, each of which is compressed by itself and so into the
/// same bytes.
Bytes compressedDashes(int count)
{
    const Bytes dashes(1 << 20, '-'); // the library cuts a text at its first zero
    z_stream stream = {};
    EXPECT_EQ(deflateInit2(&stream, 9, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY), Z_OK);
    Bytes piece(1 << 16);
    stream.next_in = const_cast<Bytef*>(dashes.data());
    stream.avail_in = static_cast<uInt>(dashes.size());
    stream.next_out = piece.data();
    stream.avail_out = static_cast<uInt>(piece.size());
    EXPECT_EQ(deflate(&stream, Z_FULL_FLUSH), Z_OK);
    piece.resize(stream.total_out);
    deflateEnd(&stream);

    Bytes compressed = {0x78, 0xDA};
    uLong sum = adler32(0, nullptr, 0);
    const uLong sumOfPiece = adler32(sum, dashes.data(), static_cast<uInt>(dashes.size()));
    for (int i = 0; i < count; ++i) {
        compressed.insert(compressed.end(), piece.begin(), piece.end());
        sum = adler32_combine(sum, sumOfPiece, static_cast<z_off_t>(dashes.size()));
    }
    const Bytes end = {0x03, 0x00, 0, 0, 0, 0}; // an empty last block
    compressed.insert(compressed.end(), end.begin(), end.end());
    png_save_uint_32(&compressed[compressed.size() - 4], static_cast<std::uint32_t>(sum));
    return compressed;
}

} // namespace

TempPath::TempPath(const std::string& suffix)
{
    static int count = 0;
    path = testing::TempDir() + "kelpix-" + std::to_string(getpid()) + "-" +
           std::to_string(++count) + suffix;
    std::filesystem::remove_all(path);
}

TempPath::~TempPath()
{
    std::filesystem::remove_all(path);
}

bool TempPath::exists() const
{
    return std::filesystem::exists(path);
}

bool TempPath::isOpen() const
{
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    return std::any_of(begin(descriptors), end(descriptors), [this](const auto& descriptor) {
        std::error_code gone;
        return std::filesystem::read_symlink(descriptor, gone) == path;
    });
}

Bytes TempPath::read() const
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void TempPath::write(const Bytes& bytes) const
{
    std::ofstream file(path, std::ios::binary);
    std::copy(bytes.begin(), bytes.end(), std::ostreambuf_iterator<char>(file));
}

Bytes Picture::bottomUp() const
{
    Bytes flipped(bytes.size());
    const std::size_t stride = width * channels;
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t i = 0; i < stride; ++i) {
            flipped[y * stride + i] = bytes[(height - 1 - y) * stride + i];
        }
    }
    return flipped;
}

Picture noise(std::size_t width, std::size_t height, std::size_t channels)
{
    std::mt19937 random(static_cast<unsigned>(width + 100 * height + 10000 * channels));
    Picture picture{width, height, channels, Bytes(width * height * channels)};
    for (unsigned char& byte : picture.bytes) {
        byte = static_cast<unsigned char>(random() >> 8);
    }
    return picture;
}

Picture gradient(std::size_t width, std::size_t height, std::size_t channels)
{
    Picture picture{width, height, channels, {}};
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            for (std::size_t k = 0; k < channels; ++k) {
                picture.bytes.push_back(
                    static_cast<unsigned char>(20 + 100 * y / height + 80 * x / width + 10 * k));
            }
        }
    }
    return picture;
}

void writePng(const TempPath& path, std::size_t width, std::size_t height, int colorType,
              int bitDepth, const Bytes& rows, bool interlaced)
{
    const File file = open(path, "wb");
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file.get());
    png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height),
                 bitDepth, colorType, interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    const png_color palette[] = {{0, 0, 0}, {255, 0, 0}, {0, 255, 0}, {0, 0, 255}};
    if (colorType == PNG_COLOR_TYPE_PALETTE) {
        png_set_PLTE(png, info, palette, 4);
    }
    png_write_info(png, info);
    const std::size_t stride = png_get_rowbytes(png, info);
    ASSERT_EQ(rows.size(), stride * height);
    std::vector<png_bytep> rowPointers;
    for (std::size_t y = 0; y < height; ++y) {
        rowPointers.push_back(const_cast<png_bytep>(rows.data() + y * stride));
    }
    png_write_image(png, rowPointers.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
}

void writePng(const TempPath& path, const Picture& picture, bool interlaced)
{
    const int colorTypes[] = {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA, PNG_COLOR_TYPE_RGB,
                              PNG_COLOR_TYPE_RGB_ALPHA};
    writePng(path, picture.width, picture.height, colorTypes[picture.channels - 1], 8,
             picture.bytes, interlaced);
}

void writeJpeg(const TempPath& path, const Picture& picture, int quality, JpegKind kind)
{
    const File file = open(path, "wb");
    jpeg_error_mgr errors;
    jpeg_compress_struct jpeg;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    jpeg_stdio_dest(&jpeg, file.get());
    jpeg.image_width = static_cast<JDIMENSION>(picture.width);
    jpeg.image_height = static_cast<JDIMENSION>(picture.height);
    jpeg.input_components = static_cast<int>(picture.channels);
    jpeg.in_color_space = picture.channels == 1   ? JCS_GRAYSCALE
                          : picture.channels == 3 ? JCS_RGB
                                                  : JCS_CMYK;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, quality, TRUE);
    if (kind == JpegKind::progressive) {
        jpeg_simple_progression(&jpeg);
    }
    jpeg_start_compress(&jpeg, TRUE);
    Bytes row(picture.width * picture.channels);
    while (jpeg.next_scanline < jpeg.image_height) {
        std::copy_n(picture.bytes.data() + jpeg.next_scanline * row.size(), row.size(), row.data());
        JSAMPROW pointer = row.data();
        jpeg_write_scanlines(&jpeg, &pointer, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
}

Bytes withTwoFrames(const Bytes& file)
{
    Bytes changed(file.begin(), file.end() - 2);
    const Bytes frame = {0xFF, 0xC0, 0, 11, 8, 0, 4, 0, 5, 1, 1, 0x11, 0};
    changed.insert(changed.end(), frame.begin(), frame.end());
    return changed;
}

Picture readJpeg(const TempPath& path)
{
    const File file = open(path, "rb");
    jpeg_error_mgr errors;
    jpeg_decompress_struct jpeg;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_stdio_src(&jpeg, file.get());
    jpeg_read_header(&jpeg, TRUE);
    jpeg_start_decompress(&jpeg);
    Picture picture{jpeg.output_width,
                    jpeg.output_height,
                    static_cast<std::size_t>(jpeg.output_components),
                    {}};
    Bytes row(picture.width * picture.channels);
    while (jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW pointer = row.data();
        jpeg_read_scanlines(&jpeg, &pointer, 1);
        picture.bytes.insert(picture.bytes.end(), row.begin(), row.end());
    }
    jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
    return picture;
}

Bytes pngChunk(const std::string& type, const Bytes& data)
{
    Bytes made(8);
    png_save_uint_32(made.data(), static_cast<std::uint32_t>(data.size()));
    std::copy(type.begin(), type.end(), made.begin() + 4);
    made.insert(made.end(), data.begin(), data.end());
    const auto crc = crc32(0, &made[4], static_cast<uInt>(made.size() - 4));
    made.resize(made.size() + 4);
    png_save_uint_32(&made[made.size() - 4], static_cast<std::uint32_t>(crc));
    return made;
}

Bytes compressedPngChunk(const std::string& type, int size)
{
    Bytes data = {'n', 'a', 'm', 'e', 0, 0};
    const Bytes dashes = compressedDashes(size);
    data.insert(data.end(), dashes.begin(), dashes.end());
    return pngChunk(type, data);
}

Bytes repeated(std::size_t count, const Bytes& bytes)
{
    Bytes all;
    for (std::size_t i = 0; i < count; ++i) {
        all.insert(all.end(), bytes.begin(), bytes.end());
    }
    return all;
}

Bytes withChunks(const Bytes& file, const Bytes& chunks)
{
    constexpr std::ptrdiff_t HEADER = 8 + 25;
    Bytes changed(file.begin(), file.begin() + HEADER);
    changed.insert(changed.end(), chunks.begin(), chunks.end());
    changed.insert(changed.end(), file.begin() + HEADER, file.end());
    return changed;
}
