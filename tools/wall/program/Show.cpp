#include <GL/glew.h>

#include "Show.h"

#include "ExitGuard.h"
#include "FramePace.h"
#include "HeldMessages.h"
#include "Launch.h"
#include "MediaFolder.h"
#include "MediaHash.h"
#include "MediaToPlay.h"
#include "MpiTransport.h"
#include "OpenFile.h"
#include "PictureFile.h"
#include "Plan.h"
#include "Printable.h"
#include "Protocol.h"
#include "RollCall.h"
#include "ShowLog.h"
#include "StateNumber.h"
#include "StatusFile.h"
#include "TilePattern.h"
#include "TileWindow.h"
#include "WallScene.h"
#include "WallSound.h"

#include <FL/Fl.H>
#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <optional>
#include <thread>

namespace wall {

namespace {

namespace fs = std::filesystem;

void say(const std::string& line)
{
    std::fprintf(stderr, "kelpix-wall: %s\n", Files::printable(line).c_str());
}

/// Called by FLTK when it cannot go on, most often because there is no display.
[[noreturn]] void onFltkFailure(const char* format, ...)
{
    char text[256];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    throw std::runtime_error(std::string("no display: ") + text);
}

/// Says that a rank cannot go on. Only the first one does, when it is the same for all: the others
/// leave it the time for that, because the launcher ends all ranks with the first one that ends.
void sayWhyItEnds(bool isFirst, const std::string& line)
{
    if (isFirst) {
        say(line);
    } else {
        std::this_thread::sleep_for(std::chrono::seconds(1));
    }
}

/// \return the path of a file that is installed beside the folder of the media
fs::path installed(const char* name)
{
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    return (program.parent_path() / KELPIX_MEDIA_FROM_PROGRAM / ".." / name).lexically_normal();
}

std::string lastLineOf(std::string text)
{
    text.erase(text.find_last_not_of('\n') + 1);
    return text.substr(text.find_last_of('\n') + 1);
}

} // namespace

/// One rank of a wall that plays.
class TileShow {
public:
    TileShow(const Options& given, MpiTransport& transport)
        : options(given), net(transport), protocol(net, say)
    {
    }

    /// \throws StartError, WallError
    void play();

private:
    Options options;
    MpiTransport& net;
    Protocol protocol;
    std::vector<std::string> hosts;
    Plan plan;
    std::optional<TileWindow> window;
    std::optional<WallSound> sound; ///< of rank 0, unless the clock is virtual
    std::optional<WallScene> scene;
    std::optional<TilePattern> pattern; ///< instead of the scene, if it is asked for
    std::optional<StatusFile> status;
    bool isStatusMissing = false; ///< which has been said
    std::optional<ShowWriter> log;
    std::uint64_t media = 0;
    Files::Handle hashFile;
    unsigned beginnings = 0;
    FrameRecord own;

    bool isFirst() const { return net.rank() == 0; }
    const WallTile& tile() const { return plan.layout.tiles[static_cast<std::size_t>(net.rank())]; }
    void openWindow();
    void makeScene();
    void openFiles();
    template<typename Work>
    void prepare(Work work);
    void enterMedia();
    void beginScene(unsigned seed);
    void playFrames();
    void fillRecord();
    void setClock();
    void playScene(const Orders& orders);
    void note(const Orders& orders);
    void noteStatus(const std::vector<FrameRecord>& records);
    void playFrame(const Orders& orders);
    void save();
};

void TileShow::enterMedia()
{
    fs::path named = options.media;
    if (named.empty()) {
        named = plan.layout.media;
    }
    const fs::path folder = mediaToPlay(named, KELPIX_MEDIA_FROM_PROGRAM);
    for (fs::path* path : {&options.log, &options.status, &options.hash, &options.shots}) {
        if (!path->empty()) {
            *path = fs::absolute(*path);
        }
    }
    if (!options.shots.empty() && !fs::is_directory(options.shots)) {
        throw std::runtime_error("no folder " + options.shots.string() + " for the pictures");
    }
    std::error_code error;
    fs::current_path(folder, error);
    if (error) {
        throw std::runtime_error("no media in " + folder.string() + ": " + error.message());
    }
    const std::vector<std::string> missing = MediaFolder::missingFiles();
    if (!missing.empty()) {
        throw std::runtime_error("the medium " + missing.front() + " is missing in " +
                                 folder.string());
    }
}

void TileShow::openWindow()
{
    const std::string host = hostName();
    if (!options.simulate && tile().host != host) {
        throw std::runtime_error("rank " + std::to_string(net.rank()) + " belongs on " +
                                 tile().host + ", not here");
    }
    if (!tile().display.empty()) {
        setenv("DISPLAY", tile().display.c_str(), 1);
    } else if (!options.simulate) {
        setenv("DISPLAY", ":0", 0);
    }
    Fl::fatal = onFltkFailure;
    const PixelRect& place = tile().desktop;
    const PixelRect& part = tile().wall;
    window.emplace(place.x, place.y, place.w, place.h, part.x,
                   plan.layout.height - part.y - part.h);
    window->open();
    checkLimits(tile());
}

/// Makes the scene as it is before the first frame, and what rank 0 has besides.
void TileShow::makeScene()
{
    if (options.pattern) {
        pattern.emplace(plan.layout, net.rank(), "fonts/ChalkboardBold.ttf");
        openFiles();
        return;
    }
    Stage::Voice voice{};
    if (options.isVirtual) {
        OggSound track;
        std::vector<char> samples;
        int format = 0;
        unsigned rate = 0;
        track.loadOGG("sound/magpie_vocal.ogg", samples, format, rate);
        voice = {track.numSamples, static_cast<int>(rate)};
    }
    scene.emplace(plan.layout, tile(), voice);
    beginScene(plan.seed);
    if (isFirst() && !options.isVirtual) {
        sound.emplace();
    }
    openFiles();
}

void TileShow::openFiles()
{
    if (isFirst()) {
        if (!options.status.empty()) {
            status.emplace(options.status, hosts);
        }
        if (!options.hash.empty() && !(hashFile = Files::create(options.hash.c_str()))) {
            throw std::runtime_error("cannot write " + options.hash.string());
        }
        if (!options.log.empty()) {
            log.emplace(options.log,
                        ShowHead{KELPIX_VERSION, media, options.simulate ? options.scale : 0,
                                 plan.layout.fit, plan.seed, plan.files});
        }
    }
}

/// Does this rank's \p work, and returns when all ranks have done theirs. Throws StartError, on all
/// ranks, when one of them failed, or when their media are not the same.
template<typename Work>
void TileShow::prepare(Work work)
{
    Readiness own;
    try {
        own.number = work();
    } catch (const std::exception& error) {
        own.problem = error.what();
    }
    exchangeReadiness(protocol, hosts, own);
}

void TileShow::beginScene(unsigned seed)
{
    scene->begin(seed);
    ++beginnings;
}

void TileShow::play()
{
    hosts = exchangeNames(protocol, KELPIX_VERSION, hostName());
    plan = agreeOnPlan(protocol, options, isFirst(), hosts.size());
    prepare([&] {
        enterMedia();
        openWindow();
        media = hashOfMedia();
        return media;
    });
    const HeldMessages messages;
    const record::ExitGuard guard([&] {
        sayWhyItEnds(isFirst(),
                     hosts[0] + ": the media cannot be played: " + lastLineOf(messages.text()));
    });
    prepare([&] {
        makeScene();
        return static_cast<std::uint64_t>(scene ? scene->numSteps() : 0);
    });
    playFrames();
}

void TileShow::fillRecord()
{
    own.frame += 1;
    own.flags = 0;
    window->takeInput(own);
    if (!isFirst()) {
        return;
    }
    if (scene) {
        setClock();
    }
    if (options.frames != 0 && own.frame > options.frames) {
        own.flags |= FrameRecord::QUIT;
    }
}

/// What the voice says: the step, and whether it is over.
void TileShow::setClock()
{
    own.step = options.isVirtual ? scene->nextStep() : sound->step(scene->numSteps());
    own.seed = plan.seed + beginnings;
    const bool over = options.isVirtual ? scene->isVoiceOver() : sound->isOver();
    if (options.loop && over) {
        own.flags |= FrameRecord::ANEW;
    }
}

void TileShow::playFrames()
{
    FramePace pace(plan.layout.rate);
    for (;;) {
        if (isFirst() && !options.isVirtual) {
            const double rest = pace.untilNext(net.now());
            std::this_thread::sleep_for(std::chrono::duration<double>(rest));
            pace.begin();
        }
        fillRecord();
        const Orders orders = protocol.exchange(own);
        note(orders);
        if (orders.quit && orders.mismatch) {
            throw WallError("the tiles disagree");
        }
        if (orders.quit) {
            return;
        }
        playFrame(orders);
    }
}

/// Writes down what the records say of the frame before.
void TileShow::note(const Orders& orders)
{
    if (!isFirst()) {
        return;
    }
    if (orders.mismatch) {
        say("frame " + std::to_string(orders.mismatch->frame) + ": " +
            protocol.nameOf(orders.mismatch->rank) + " differs in " + orders.mismatch->part +
            (orders.quit ? "; the wall ends" : "; the wall begins anew"));
    }
    if (own.frame == 1) {
        return;
    }
    if (hashFile != nullptr) {
        std::fprintf(hashFile.get(), "%u %016" PRIx64 "\n", own.frame - 1, numberOf(own.state));
    }
    noteStatus(orders.records);
}

/// A status that cannot be written is said once, and the show goes on.
void TileShow::noteStatus(const std::vector<FrameRecord>& records)
{
    if (!status) {
        return;
    }
    try {
        status->add(records, net.now());
    } catch (const std::runtime_error& failure) {
        if (!isStatusMissing) {
            say(failure.what());
        }
        isStatusMissing = true;
    }
}

void TileShow::playFrame(const Orders& orders)
{
    using Clock = std::chrono::steady_clock;
    using Milliseconds = std::chrono::duration<float, std::milli>;

    const Clock::time_point begin = Clock::now();
    if (pattern) {
        pattern->draw(own.frame);
    } else {
        playScene(orders);
    }
    save();
    glFinish();
    const Clock::time_point drawn = Clock::now();
    protocol.meet();
    const Clock::time_point left = Clock::now();
    window->swap();
    own.drawing = Milliseconds(drawn - begin).count();
    own.waiting = Milliseconds(left - drawn).count();
    own.left = std::chrono::nanoseconds(left.time_since_epoch()).count();
    if (sound && (own.frame == 1 || orders.anew)) {
        sound->begin();
    }
}

void TileShow::playScene(const Orders& orders)
{
    if (orders.anew) {
        beginScene(orders.seed);
    }
    for (const InputEvent& event : orders.inputs) {
        scene->give(event);
    }
    scene->update(orders.step);
    scene->draw();
    own.state = scene->state();
    if (log) {
        log->add({own.frame, orders.step, numberOf(own.state),
                  orders.anew ? std::optional(orders.seed) : std::nullopt, orders.inputs});
    }
}

/// Saves the tile's picture, if this frame's is asked for.
void TileShow::save()
{
    if (std::find(options.shotFrames.begin(), options.shotFrames.end(), own.frame) ==
        options.shotFrames.end()) {
        return;
    }
    const int width = tile().desktop.w;
    const int height = tile().desktop.h;
    record::Picture picture{width, height, {}};
    picture.pixels.resize(picture.rowBytes() * static_cast<std::size_t>(height));
    // GL's rows are bottom-up.
    for (int row = 0; row < height; ++row) {
        glReadPixels(0, height - 1 - row, width, 1, GL_RGBA, GL_UNSIGNED_BYTE,
                     &picture.pixels[picture.rowBytes() * static_cast<std::size_t>(row)]);
    }
    const std::string name = std::to_string(tile().column) + "-" + std::to_string(tile().row) +
                             "-" + std::to_string(own.frame) + ".png";
    record::writePng(options.shots / name, picture);
}

int playTile(const Options& options)
{
    constexpr int CANNOT_GO_ON = 3;
    if (isFirstRank() && !options.isVirtual && !options.pattern &&
        !WallSound::chooseDevice(installed("alsoft.conf").c_str())) {
        say(hostName() + ": no sound device: the voice plays silently");
    }
    quietenTopology();
    MpiTransport net;
    TileShow show(options, net);
    try {
        show.play();
    } catch (const StartError& error) {
        std::istringstream lines(error.what());
        for (std::string line; net.rank() == 0 && std::getline(lines, line);) {
            say(line);
        }
        net.leave();
        return 1;
    } catch (const WallError&) {
        // The launcher ends all ranks with the first one that ends: who says why needs a moment.
        std::this_thread::sleep_for(std::chrono::seconds(1));
        return CANNOT_GO_ON;
    } catch (const std::exception& error) {
        throw std::runtime_error(hostName() + ": " + error.what());
    }
    net.leave();
    return 0;
}

} // namespace wall
