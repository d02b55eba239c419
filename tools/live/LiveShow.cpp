#include <GL/glew.h>

#include "LiveShow.h"

#include "DisplayFailure.h"
#include "ExitGuard.h"
#include "FramePace.h"
#include "HeldMessages.h"
#include "Interruption.h"
#include "LatestLine.h"
#include "LiveScene.h"
#include "LiveWindow.h"
#include "MediaFolder.h"
#include "MediaToPlay.h"
#include "OscInput.h"
#include "Printable.h"
#include "Report.h"
#include "SceneSound.h"
#include "Take.h"
#include "TakeFiles.h"

#include <FL/Fl.H>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <optional>
#include <stdexcept>

namespace live {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int SIDE = 740; // of the window, pixels

void say(const std::string& line)
{
    std::fprintf(stderr, "kelpix-live: %s\n", Files::printable(line).c_str());
}

double now()
{
    return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
}

std::string lastLineOf(std::string text)
{
    text.erase(text.find_last_not_of('\n') + 1);
    return text.substr(text.find_last_of('\n') + 1);
}

/// Makes the options' names of files absolute, and enters the folder of the media.
void enterMedia(Options& options)
{
    const fs::path folder = mediaToPlay(options.media, KELPIX_MEDIA_FROM_PROGRAM);
    enterFolder(folder, {&options.record, &options.status});
    const std::vector<std::string> missing = MediaFolder::missingFiles();
    if (!missing.empty()) {
        throw std::runtime_error("the medium " + missing.front() + " is missing in " +
                                 folder.string());
    }
}

class LiveShow {
public:
    explicit LiveShow(const Options& given);

    void play();

private:
    Options options;
    LiveWindow window;
    LiveScene scene;
    std::optional<osc::OscInput> input; ///< none while another program has the port
    std::optional<TakeFiles> files;
    std::optional<status::LatestLine> statusFile;
    bool isStatusMissing = false; ///< which has been said
    std::optional<SceneSound> sound;
    std::optional<HeldMessages> messages; ///< what the scene prints since it began
    std::optional<Take> take;             ///< of this showing, until it is written
    unsigned seed;
    bool isFresh = true; ///< the scene has not been drawn yet
    FramePace pace{Rates::UPDATES};
    Second second;
    std::chrono::nanoseconds oldest{0}; ///< when the first message came that no frame shows yet
    double secondBegan = 0;
    std::uint64_t framesBefore = 0; ///< that second

    void listen();
    void begin();
    void await();
    void obey();
    void playFrame();
    void noteLatency();
    void endTake();
    void writeStatus(const std::string& line);
    void report();
};

LiveShow::LiveShow(const Options& given)
    : options(given), window(SIDE, SIDE,
                             [this](const SceneInput& event) {
                                 if (!isFresh) {
                                     scene.give(event);
                                 }
                             }),
      seed(options.seed.value_or(static_cast<unsigned>(std::time(nullptr))))
{
    listen();
    if (!input) {
        say("another program listens at " + options.bind.string() + ", port " +
            std::to_string(options.port) + ": messages are heard once it is gone");
    }
    if (!options.record.empty()) {
        files.emplace(options.record, options.force);
    }
    if (!options.status.empty()) {
        statusFile.emplace(options.status);
        statusFile->check();
    }
}

/// Opens the port, unless another program has it.
void LiveShow::listen()
{
    try {
        input.emplace(options.bind, options.port);
    } catch (const osc::PortTaken&) {
        input.reset();
    }
}

void LiveShow::play()
{
    const record::ExitGuard guard([this] {
        if (isFresh && messages) {
            say("the media cannot be played: " + lastLineOf(messages->text()));
        }
        endTake();
    });
    throwDisplayFailures();
    try {
        window.open(options.fullscreen);
    } catch (const DisplayFailure& failure) {
        throw std::runtime_error(std::string("no display: ") + failure.what());
    }
    begin();
    sound.emplace();
    try {
        for (await(); window.shown(); await()) {
            playFrame();
            report();
            record::Interruption::check();
        }
    } catch (const record::Interruption&) {
        endTake();
        throw;
    }
    endTake();
}

/// Begins the scene and its take; the voice begins with its first frame.
void LiveShow::begin()
{
    endTake();
    messages.emplace();
    take.reset();
    // FLTK tells the window of the pointer in it while the scene before is deleted.
    isFresh = true;
    scene.begin(window.w(), window.h(), seed);
    if (files) {
        take.emplace(scene.recorded());
    }
}

/// Waits until the next frame is due, and lets FLTK do what there is to do meanwhile.
void LiveShow::await()
{
    Fl::check();
    for (double rest = pace.untilNext(now()); rest > 0; rest = pace.untilNext(now())) {
        Fl::wait(rest);
    }
    pace.begin();
}

void LiveShow::obey()
{
    using Kind = osc::Command::Kind;
    const auto commands = input ? input->take() : std::vector<osc::Command>();
    const bool isRenewed = std::ranges::any_of(commands, [](const osc::Command& command) {
        return command.kind == Kind::SEED || command.kind == Kind::RESTART;
    });
    if (options.loop && sound->isOver() && !isRenewed) {
        begin();
    }
    for (const osc::Command& command : commands) {
        oldest = oldest.count() == 0 ? command.due : std::min(oldest, command.due);
        if (command.kind == Kind::SEED || command.kind == Kind::RESTART) {
            seed = command.kind == Kind::SEED ? command.seed : seed;
            begin();
        } else {
            scene.obey(command);
        }
    }
}

void LiveShow::playFrame()
{
    if (window.takeNewSize()) {
        scene.resize(window.w(), window.h());
    }
    obey();
    // After its end the voice has no place in the recording. That of a fresh scene has not begun.
    if (!isFresh && sound->isOver()) {
        endTake();
    }
    scene.update(isFresh ? 0 : sound->step(scene.numSteps())); // its voice has not begun
    if (take) {
        take->note(scene.step(), scene.poses());
    }
    scene.draw();
    glFinish();
    window.swap();
    window.setTitle(scene.stage().window.label());
    ++second.frame;
    noteLatency();
    if (isFresh) {
        isFresh = false;
        sound->begin();
    }
}

/// How long the messages of this frame have waited for it.
void LiveShow::noteLatency()
{
    using Milliseconds = std::chrono::duration<double, std::milli>;
    if (oldest.count() != 0) {
        const Milliseconds waited = Clock::now().time_since_epoch() - oldest;
        second.latency = std::max(second.latency, waited.count());
        oldest = {};
    }
}

/// Writes the take, if there is one in which a figure was led.
void LiveShow::endTake()
{
    if (!take || !take->isLed()) {
        take.reset();
        return;
    }
    take->end(scene.figures(), scene.view());
    const std::string text = take->text(*scene.stage().recording);
    take.reset();
    try {
        say("the dance is in " + files->write(text).string());
    } catch (const std::exception& error) {
        say(error.what());
    }
}

/// A status that cannot be written is said once, and the show goes on.
void LiveShow::writeStatus(const std::string& line)
{
    if (!statusFile) {
        return;
    }
    try {
        statusFile->write(line);
    } catch (const std::runtime_error& failure) {
        if (!isStatusMissing) {
            say(failure.what());
        }
        isStatusMissing = true;
    }
}

/// Once a second: tells how it goes, and tries the port again.
void LiveShow::report()
{
    const double time = now();
    if (secondBegan == 0) {
        secondBegan = time;
        return;
    }
    if (time - secondBegan < 1) {
        return;
    }
    second.rate = static_cast<double>(second.frame - framesBefore) / (time - secondBegan);
    if (!input) {
        listen();
    }
    const osc::Counts counts = input ? input->counts() : osc::Counts();
    const std::string line = lineOf(scene, std::time(nullptr), seed, second, counts);
    if (input) {
        input->setStatus(line);
    }
    writeStatus(line);
    secondBegan = time;
    framesBefore = second.frame;
    second.latency = 0;
}

} // namespace

void playLive(const Options& given)
{
    Options options = given;
    enterMedia(options);
    record::Interruption::watch();
    if (!SceneSound::chooseDevice(KELPIX_MEDIA_FROM_PROGRAM)) {
        say("no sound device: the voice plays silently");
    }
    LiveShow(options).play();
}

} // namespace live
