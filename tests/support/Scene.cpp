#include "Scene.h"

#include <X11/Xlib.h>
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <limits>

namespace {

/// Objects that live until the program ends are never deleted: no leak check here.
Program::Environment withoutLeakCheck(Program::Environment changes)
{
    const char* options = std::getenv("ASAN_OPTIONS");
    changes["ASAN_OPTIONS"] =
        std::string(options ? options : "") + ":detect_leaks=0:verify_asan_link_order=0";
    return changes;
}

std::vector<std::string> withProgram(std::vector<std::string> launcher)
{
    launcher.emplace_back(KELPIX_PROGRAM);
    return launcher;
}

/// A record has 25 words; one that the file breaks off counts too.
int recordsIn(const std::filesystem::path& file)
{
    std::ifstream stream(file);
    std::string word;
    int words = 0;
    while (stream >> word) {
        ++words;
    }
    return std::max((words + 24) / 25, 1);
}

} // namespace

std::filesystem::path Scene::media()
{
    return KELPIX_MEDIA;
}

Scene::Scene(const std::filesystem::path& folder, const Program::Environment& changes)
    : program(withProgram({}), folder, withoutLeakCheck(changes))
{
}

Scene::Scene(std::vector<std::string> launcher, const std::filesystem::path& folder)
    : program(withProgram(std::move(launcher)), folder, withoutLeakCheck({}))
{
}

std::string Scene::window()
{
    return printedBy({"xdotool", "search", "--sync", "--onlyvisible", "--name", "^kelpix \\("});
}

std::string Scene::newWindow()
{
    // xdotool's own --sync looks twice a second only.
    program.waitForOutput("Loading...\n");
    std::string found;
    while (found.empty() && !program.hasEnded()) {
        found = printedBy({"xdotool", "search", "--onlyvisible", "--classname", "^kelpix$"});
    }
    return found;
}

void Scene::askToClose(const std::string& window)
{
    Display* display = XOpenDisplay(nullptr);
    if (!display) {
        return;
    }
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = std::stoul(window);
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    XSendEvent(display, event.xclient.window, False, NoEventMask, &event);
    XCloseDisplay(display);
}

std::string Scene::startText(const std::filesystem::path& folder)
{
    std::string text = "loading ogg file...\ndone.\nloading ogg file...\ndone.\n";
    std::ifstream index(folder / "data/mocap.txt");
    std::string word;
    int files = 0;
    int sensors = 0;
    index >> word >> files >> sensors;
    text += std::to_string(files) + " mocap datafile, picking " + std::to_string(sensors) +
            " sensors only.\n";
    int steps = std::numeric_limits<int>::max();
    for (int f = 0; f < files; ++f) {
        std::string path;
        index >> path;
        const int records = recordsIn(folder / path);
        steps = std::min(steps, records);
        text += "Loading mocap file " + std::to_string(f) + ", " + path + "\nFile " + path +
                " has " + std::to_string(records) + " lines.\n";
    }
    return text + "\n\nsize of sensorDataList = " + std::to_string(steps) + "\n\nLoading...\n";
}

std::string Scene::firstFrameText()
{
    // The images of the water and of the fish, and the bodies of the three sensors.
    return "GLEW ok; can do GLSL; can do VBO; \n"
           "loaded texture data.\n"
           "loaded texture data.\n"
           "-- Generate 240 frames of base animation.\n"
           "-- Generate 240 frames of base animation.\n"
           "-- Generate 240 frames of base animation.\n";
}

std::string Scene::firstBubblesText()
{
    return "loaded texture data.\n";
}
