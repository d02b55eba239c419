#include <gtest/gtest.h> // before the macros of Xlib

#include "Screen.h"

#include <cstdlib>

namespace {

/// A scene takes keys by the keyboard's first layout.
TEST(ShowScreenTest, KnowsWhetherTheKeyboardHasAQ)
{
    show::Screen screen({});
    const auto pressesQ = [&](const char* layouts) {
        EXPECT_EQ(std::system(layouts), 0);
        screen.read({});
        return screen.pressQ(1);
    };
    EXPECT_TRUE(pressesQ("setxkbmap us,ru"));
    EXPECT_FALSE(pressesQ("setxkbmap gr"));
    EXPECT_TRUE(pressesQ("setxkbmap fr"));
    EXPECT_FALSE(pressesQ("setxkbmap ru,us"));
    EXPECT_TRUE(pressesQ("setxkbmap us"));
}

} // namespace
