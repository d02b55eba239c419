#include "Scene.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <png.h>

namespace {

using testing::StartsWith;

/// Stands between the program and the screen, as a window manager does: a window appears when it is
/// mapped here.
class WindowManager {
public:
    WindowManager() : display(XOpenDisplay(nullptr), XCloseDisplay)
    {
        XSelectInput(display.get(), DefaultRootWindow(display.get()), SubstructureRedirectMask);
        XSync(display.get(), False);
    }

    /// Waits for a window that wants to appear.
    Window nextWindow()
    {
        XEvent event{};
        while (event.type != MapRequest) {
            XNextEvent(display.get(), &event);
        }
        return event.xmaprequest.window;
    }

    std::unique_ptr<Display, int (*)(Display*)> display;
};

/// A PNG file as windows have it for an icon: width, height, and the pixels as ARGB, rows from the
/// top.
std::vector<unsigned long> iconOf(const std::string& file)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    EXPECT_NE(png_image_begin_read_from_file(&image, file.c_str()), 0) << file;
    image.format = PNG_FORMAT_ARGB;
    std::vector<unsigned char> bytes(PNG_IMAGE_SIZE(image));
    EXPECT_NE(png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr), 0) << file;
    std::vector<unsigned long> icon{image.width, image.height};
    for (std::size_t i = 0; i < bytes.size(); i += 4) {
        icon.push_back(static_cast<unsigned long>(bytes[i]) << 24 | bytes[i + 1] << 16 |
                       bytes[i + 2] << 8 | bytes[i + 3]);
    }
    return icon;
}

class ProgramWindowTest : public testing::Test {
protected:
    WindowManager manager;
    Scene scene{Scene::media()};
    Window window = manager.nextWindow();
    Display* display = manager.display.get();

    std::vector<unsigned long> cardinals(const char* property)
    {
        Atom type = None;
        int format = 0;
        unsigned long count = 0;
        unsigned long left = 0;
        unsigned char* data = nullptr;
        XGetWindowProperty(display, window, XInternAtom(display, property, False), 0, 1000000,
                           False, XA_CARDINAL, &type, &format, &count, &left, &data);
        std::vector<unsigned long> values;
        if (data) {
            const auto* const words = reinterpret_cast<const unsigned long*>(data);
            for (unsigned long i = 0; i < count; ++i) {
                values.push_back(words[i] & 0xFFFFFFFF); // Xlib extends the sign
            }
            XFree(data);
        }
        return values;
    }
};

TEST_F(ProgramWindowTest, ADesktopKnowsItBeforeItAppears)
{
    char* name = nullptr;
    ASSERT_NE(XFetchName(display, window, &name), 0);
    EXPECT_STREQ(name, "kelpix");
    XFree(name);

    // FLTK makes the second of the first. Desktops look for the desktop entry with both.
    XClassHint hint{};
    ASSERT_NE(XGetClassHint(display, window, &hint), 0);
    EXPECT_STREQ(hint.res_name, "kelpix");
    EXPECT_STREQ(hint.res_class, "Kelpix");
    XFree(hint.res_name);
    XFree(hint.res_class);

    XSizeHints hints{};
    long supplied = 0;
    ASSERT_NE(XGetWMNormalHints(display, window, &hints, &supplied), 0);
    EXPECT_EQ(hints.flags & (PMinSize | PMaxSize | PAspect | PResizeInc), PMinSize);
    EXPECT_EQ(hints.min_width, 100);
    EXPECT_EQ(hints.min_height, 100);
    XWindowAttributes attributes{};
    XGetWindowAttributes(display, window, &attributes);
    EXPECT_EQ(attributes.width, 740);
    EXPECT_EQ(attributes.height, 740);

    std::vector<unsigned long> icons;
    for (const char* size : {"16", "32", "48", "128"}) {
        const std::vector<unsigned long> icon = iconOf(std::string(KELPIX_ICONS) + size + ".png");
        icons.insert(icons.end(), icon.begin(), icon.end());
    }
    EXPECT_TRUE(cardinals("_NET_WM_ICON") == icons);

    // It takes its title with the first frame.
    XMapWindow(display, window);
    XSync(display, False);
    EXPECT_THAT(scene.title(), StartsWith("kelpix ("));
    EXPECT_EQ(std::to_string(window), scene.window());
}

} // namespace
