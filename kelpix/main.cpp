#include "AppManager.h"
#include "DisplayFailure.h"
#include "FreeType.h"
#include "MediaFolder.h"
#include "OggSound.h"
#include "Rates.h"
#include "StandardStreams.h"
#include "UnderwaterScene.h"
#include "Window.h"
#include "WindowIcon.h"

#include <AL/alc.h>
#include <FL/Fl.H>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <future>
#include <stdexcept>

namespace {

freetype::font_data our_font;

void drawCallback(Window*)
{
}

/// Closes the sound device however the process ends: OpenAL prints a warning when it is left open.
void closeSound()
{
    if (alcGetCurrentContext() != nullptr) {
        OggSound::exitAL();
    }
}

/// What desktops and window managers are told of the window before it is shown: a name until the
/// first frame gives it a title, its class, by which they find the desktop entry, its icon, and
/// that it may have any size from the smallest on.
void introduceToDesktop(Window& window)
{
    constexpr int SMALLEST = 100;
    window.label("kelpix");
    window.xclass("kelpix");
    setWindowIcon(window);
    window.size_range(SMALLEST, SMALLEST);
}

/// Decodes a track on another thread from now on; where none can be started, when it is asked for.
std::future<OggTrack> decodeAhead(const char* path)
{
    return std::async([path] { return OggTrack::decode(path); });
}

OggSound* loadSound(std::future<OggTrack>& track)
{
    auto* sound = new OggSound;
    std::puts("loading ogg file...");
    sound->load(track.get());
    std::puts("done.");
    return sound;
}

/// Builds the scene, shows it, and returns when its window has been closed.
int runScene(int argc, char** argv)
{
    std::srand(static_cast<unsigned>(std::time(nullptr)));
    // Static: std::exit waits in their destructors, too, so that no decoder runs on while it ends
    // the process.
    static std::future<OggTrack> voiceTrack = decodeAhead("sound/magpie_vocal.ogg");
    static std::future<OggTrack> bubblesTrack = decodeAhead("sound/bubbles_sound.ogg");
    OggSound::initAL(&argc, argv);
    std::atexit(closeSound);
    if (alcGetCurrentContext() == nullptr) {
        std::fprintf(stderr, "kelpix: no sound device: the scene is silent and its figures rest. "
                             "ALSOFT_DRIVERS=null plays to nowhere and lets them move.\n");
    }

    UnderwaterScene scene; // so far its graph, root and pivot

    OggSound* voice = loadSound(voiceTrack);
    OggSound* bubbles = loadSound(bubblesTrack);
    voice->setVolume(1.5f);
    bubbles->setVolume(0.2f);

    // A hundred fish, three figures and the grid; starts the clock of the recording.
    scene.addWater(voice);

    auto* manager = new AppManager;
    auto* window = new Window(1, 0, 0, 740, 740);
    scene.showIn(*window, our_font, drawCallback);
    introduceToDesktop(*window);
    manager->addWindow(window);
    manager->addTimeouts(Rates::UPDATES, Rates::REDRAWS);
    if (!window->shown()) {
        throw std::runtime_error("kelpix: no window: the display offers no OpenGL with double "
                                 "buffering, accumulation, alpha and depth.");
    }

    voice->play();
    bubbles->loopyPlay();
    while (window->shown()) {
        Fl::wait();
    }

    // The nodes, the window and the bubbles' sound live until the process ends.
    delete voice;
    OggSound::exitAL();
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    secureStandardStreams();
    // Messages reach a log while the scene runs, in order with those on standard error.
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    throwDisplayFailures();
    try {
        MediaFolder::reportMissingFiles();
        return runScene(argc, argv);
    } catch (const DisplayFailure& failure) {
        std::fprintf(stderr,
                     "kelpix: no window: %s\n"
                     "Start it in a graphical session, or set DISPLAY to an X server.\n",
                     failure.what());
        return 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
