#include "WindowIcon.h"

#include "WindowIconFiles.h"

#include <FL/Fl_Image.H>
#include <FL/Fl_Window.H>
#include <list>
#include <png.h>
#include <vector>

namespace {

/// \return RGBA rows from the top, of \p image's size; empty when memory runs out
std::vector<unsigned char> decode(png_image& image, const WindowIconFile& file)
{
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&image, file.bytes, file.size)) {
        return {};
    }
    image.format = PNG_FORMAT_RGBA;
    std::vector<unsigned char> pixels(PNG_IMAGE_SIZE(image));
    if (!png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr)) {
        return {};
    }
    return pixels;
}

} // namespace

void setWindowIcon(Fl_Window& window)
{
    constexpr int RGBA = 4;
    std::list<std::vector<unsigned char>> pixels;
    std::list<Fl_RGB_Image> images;
    std::vector<const Fl_RGB_Image*> icons;
    for (const WindowIconFile& file : windowIconFiles()) {
        png_image image{};
        pixels.push_back(decode(image, file));
        if (!pixels.back().empty()) {
            images.emplace_back(pixels.back().data(), static_cast<int>(image.width),
                                static_cast<int>(image.height), RGBA);
            icons.push_back(&images.back());
        }
    }
    // FLTK copies them.
    window.icons(icons.data(), static_cast<int>(icons.size()));
}
