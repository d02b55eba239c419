/// The input is a JPEG file. What is read of it is written again.

#include "Harness.h"
#include "ImageJPEG.h"

namespace {

/// The image does not delete the name of its file.
struct Image : ImageJPEG {
    ~Image() { delete[] sourceFile; }
};

} // namespace

void fuzz::test(std::string_view input)
{
    const std::string path = place("picture.jpg", input);
    Image image;
    expect(image.read(nullptr) == 0, "there is no file without a name");
    expect(image.write(path.c_str(), 100) == 0, "there is nothing to write");
    const int result = call([&] { return image.read(path.c_str()); });
    expect(result == 0 || result == 1, "the result is 0 or 1");
    const auto pixels =
        static_cast<std::size_t>(image.getWidth()) * static_cast<std::size_t>(image.getHeight());
    if (result == 1) {
        expect(path == image.getSourceFile(), "the name of the file is kept");
    }
    if (image.getPixelBuffer() != nullptr) {
        const auto components = static_cast<std::size_t>(image.getComponents());
        reach(image.getPixelBuffer(), pixels * std::max<std::size_t>(components, 3));
        const std::string copy = place("copy.jpg", "");
        const int quality = static_cast<unsigned char>(input.back()) - 64;
        const bool written = image.write(copy.c_str(), quality) == 1;
        expect(!written || components == 3, "only RGB is written");
        expect(image.write(folder().c_str(), quality) == 0, "a folder is not written");
    }
}
