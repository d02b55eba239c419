#include "Scene.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

namespace {

using testing::ElementsAre;
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

    // Width, height, and the pixels as ARGB, one size after another. In the middle is the fish.
    const std::vector<unsigned long> icons = cardinals("_NET_WM_ICON");
    std::vector<unsigned long> sizes;
    for (std::size_t i = 0; i + 2 < icons.size(); i += 2 + icons[i] * icons[i + 1]) {
        const unsigned long width = icons[i];
        const unsigned long height = icons[i + 1];
        sizes.push_back(width);
        EXPECT_EQ(width, height);
        const unsigned long middle = icons[i + 2 + height / 2 * width + width / 2];
        EXPECT_EQ(middle >> 24, 255u) << width << ": opaque";
        EXPECT_GT(middle >> 16 & 255, 2 * (middle & 255)) << width << ": more red than blue";
        EXPECT_EQ(icons[i + 2] >> 24, 0u) << width << ": the corner is transparent";
    }
    EXPECT_THAT(sizes, ElementsAre(16, 32, 48, 128));

    // It takes its title with the first frame.
    XMapWindow(display, window);
    XSync(display, False);
    EXPECT_THAT(scene.title(), StartsWith("kelpix ("));
    EXPECT_EQ(std::to_string(window), scene.window());
}

} // namespace
