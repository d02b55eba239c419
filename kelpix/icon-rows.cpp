// Decodes PNG files with RGBA and writes them as the source of windowIconRows; the build runs it.
// Usage: kelpix-icon-rows SOURCE PNG...

#include "ImagePNG.h"
#include "PartFile.h"

#include <cstddef>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>

namespace {

constexpr int RGBA = 4;

/// \return the bytes of the pixels, separated by commas, rows from the top
std::string elements(const ImagePNG& image)
{
    const int rowBytes = image.w * RGBA;
    std::string text;
    for (int y = image.h - 1; y >= 0; --y) { // the image has them from the bottom
        for (int i = 0; i < rowBytes; ++i) {
            text += std::to_string(image.buffer[y * rowBytes + i]) + ',';
        }
        text += '\n';
    }
    return text;
}

void readIcon(ImagePNG& image, const char* file)
{
    const bool read = image.read(file) == 1 && image.c == RGBA;
    // The image does not delete its name.
    delete[] image.sourceFile;
    image.sourceFile = nullptr;
    if (!read) {
        throw std::runtime_error(std::string(file) + " is no PNG file with RGBA");
    }
}

void writeSource(const char* source, int count, char** files)
{
    std::string arrays;
    std::string table;
    for (int i = 0; i < count; ++i) {
        ImagePNG image;
        readIcon(image, files[i]);
        const std::string name = "ICON_" + std::to_string(i);
        arrays += "constexpr unsigned char " + name + "[] = {\n" + elements(image) + "};\n";
        table += "    {" + name + ", " + std::to_string(image.w) + ", " + std::to_string(image.h) +
                 "},\n";
    }
    Files::writeWhole(source, "#include \"WindowIconRows.h\"\n\n"
                              "namespace {\n\n" +
                                  arrays + "constexpr WindowIconRows ROWS[] = {\n" + table +
                                  "};\n\n"
                                  "} // namespace\n\n"
                                  "std::span<const WindowIconRows> windowIconRows()\n"
                                  "{\n"
                                  "    return ROWS;\n"
                                  "}\n");
}

} // namespace

int main(int argc, char* argv[])
{
    constexpr int FIRST_FILE = 2;
    if (argc <= FIRST_FILE) {
        std::fprintf(stderr, "usage: kelpix-icon-rows SOURCE PNG...\n");
        return 2;
    }
    try {
        writeSource(argv[1], argc - FIRST_FILE, argv + FIRST_FILE);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "kelpix-icon-rows: %s\n", failure.what());
        return 1;
    }
}
