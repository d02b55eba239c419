/// The input is a PNG file.

#include "Harness.h"
#include "ImagePNG.h"

namespace {

/// The name of the file outlives the image, but not here.
struct Image : ImagePNG {
    ~Image() { delete[] sourceFile; }
};

} // namespace

void fuzz::test(std::string_view input)
{
    const std::string path = place("picture.png", input);
    Image image;
    const int result = call([&] { return image.read(path.c_str()); });
    const auto pixels = static_cast<std::size_t>(image.getWidth()) *
                        static_cast<std::size_t>(image.getHeight());
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
