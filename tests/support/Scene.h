#pragma once

#include "Program.h"

/// The scene's program, running in a folder of media, and a user at its window.
class Scene {
public:
    /// The media that the build makes.
    static std::filesystem::path media();

    /// Starts it on the display of the test, without a sound device that could be heard.
    explicit Scene(const std::filesystem::path& folder, const Program::Environment& changes = {});

    /// Starts it below another program, as that program's last argument.
    Scene(std::vector<std::string> launcher, const std::filesystem::path& folder);

    Program program;

    /// Waits for the window. \return its X window, in digits
    std::string window();

    /// As window(), but finds the window before its first frame, too, while it has no title.
    std::string newWindow();

    std::string title() { return printedBy({"xdotool", "getwindowname", window()}); }

    void press(const std::string& key) { press(key, window()); }
    static void press(const std::string& key, const std::string& window)
    {
        printedBy({"xdotool", "windowfocus", "--sync", window, "key", key});
    }

    /// Asks the window to close, as a window manager does.
    void askToClose() { askToClose(window()); }
    static void askToClose(const std::string& window);

    /// What a start prints that finds all it needs, computed from the recordings in \p folder: up
    /// to the window, then the first frame, then the first bubbles.
    static std::string startText(const std::filesystem::path& folder);
    static std::string firstFrameText();
    static std::string firstBubblesText();
};
