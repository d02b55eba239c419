#include "ReadPicture.h"

#include <cstdio>
#include <jpeglib.h>
#include <png.h>

Picture readJpeg(const std::string& path)
{
    Picture picture;
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        return picture;
    }
    jpeg_decompress_struct info;
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&info);
    jpeg_stdio_src(&info, file);
    jpeg_read_header(&info, TRUE);
    picture.channels = info.num_components;
    picture.bitDepth = info.data_precision;
    for (int i = 0; i < info.num_components; ++i) {
        picture.samplingFactors.push_back(
            {info.comp_info[i].h_samp_factor, info.comp_info[i].v_samp_factor});
    }
    jpeg_start_decompress(&info);
    picture.width = static_cast<int>(info.output_width);
    picture.height = static_cast<int>(info.output_height);
    const std::size_t stride = std::size_t{info.output_width} * 3;
    picture.bytes.resize(stride * info.output_height);
    while (info.output_scanline < info.output_height) {
        JSAMPLE* row = &picture.bytes[stride * info.output_scanline];
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
    std::fclose(file);
    return picture;
}

Picture readPng(const std::string& path)
{
    Picture picture;
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        return picture;
    }
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_read_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
    picture.width = static_cast<int>(png_get_image_width(png, info));
    picture.height = static_cast<int>(png_get_image_height(png, info));
    picture.channels = png_get_channels(png, info);
    picture.bitDepth = png_get_bit_depth(png, info);
    picture.colorType = png_get_color_type(png, info);
    const png_size_t stride = png_get_rowbytes(png, info);
    for (int y = 0; y < picture.height; ++y) {
        const png_byte* row = png_get_rows(png, info)[y];
        picture.bytes.insert(picture.bytes.end(), row, row + stride);
    }
    png_destroy_read_struct(&png, &info, nullptr);
    std::fclose(file);
    return picture;
}
