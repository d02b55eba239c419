/// The input is a PNG file.

#include "Harness.h"
#include "ImagePNG.h"

#include <png.h>

extern "C" {
png_infop __real_png_create_info_struct(png_const_structrp png);
png_infop __wrap_png_create_info_struct(png_const_structrp png)
{
    return fuzz::memory::runsOut() ? nullptr : __real_png_create_info_struct(png);
}
}

namespace {

/// The image does not delete the name of its file.
struct Image : ImagePNG {
    ~Image() { delete[] sourceFile; }
};

} // namespace

void fuzz::test(std::string_view input)
{
    const std::string path = place("picture.png", input);
    Image image;
    expect(image.read(nullptr) == -1, "there is no file without a name");
    expect(image.read("picture") == -1, "names end in .png");
    expect(image.read((folder() + "missing.png").c_str()) == -1, "the file has to be there");
    expect(image.write(path.c_str(), 100) == 0, "PNG files are not written");
    const int result = call([&] { return image.read(path.c_str()); });
    const auto pixels =
        static_cast<std::size_t>(image.getWidth()) * static_cast<std::size_t>(image.getHeight());
    const int components = image.getComponents();
    if (result == 1) {
        expect(path == image.getSourceFile(), "the name of the file is kept");
        expect(components == 1 || components == 3 || components == 4, "1, 3 or 4 components");
        reach(image.getPixelBuffer(), pixels * 4); // what the upload of a texture reads
    } else {
        expect(result == -1, "the result is 1 or -1");
        expect(components == 0 || image.getPixelBuffer() != nullptr, "no components, no pixels");
    }
}
