#include "WindowIcon.h"

#include "WindowIconRows.h"

#include <FL/Fl_Image.H>
#include <FL/Fl_Window.H>
#include <list>
#include <vector>

void setWindowIcon(Fl_Window& window)
{
    constexpr int RGBA = 4;
    std::list<Fl_RGB_Image> images;
    std::vector<const Fl_RGB_Image*> icons;
    for (const WindowIconRows& rows : windowIconRows()) {
        icons.push_back(&images.emplace_back(rows.pixels, rows.width, rows.height, RGBA));
    }
    // FLTK copies them.
    window.icons(icons.data(), static_cast<int>(icons.size()));
}
