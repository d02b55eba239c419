#include <GL/glew.h>

#include "Preparation.h"

#include "DisplayFailure.h"
#include "ExitGuard.h"
#include "Launch.h"
#include "MediaFolder.h"
#include "MediaHash.h"
#include "MediaToPlay.h"
#include "MpiTransport.h"
#include "Options.h"
#include "Protocol.h"
#include "Rank.h"
#include "RollCall.h"
#include "Say.h"

#include <cstdio>
#include <optional>
#include <stdexcept>

namespace wall {

namespace {

namespace fs = std::filesystem;

/// \param named  by the user; may be empty
void enterMedia(const fs::path& named)
{
    const fs::path folder = mediaToPlay(named, KELPIX_MEDIA_FROM_PROGRAM);
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

/// What is printed to standard error, held back while it lives: what the scene's readers say before
/// they end the process becomes part of a line that names the host.
class HeldErrors {
public:
    HeldErrors() = default;
    HeldErrors(const HeldErrors&) = delete;
    HeldErrors& operator=(const HeldErrors&) = delete;
    ~HeldErrors() { std::fputs(take().c_str(), stderr); }

    /// Ends it. \return what was printed since it began, once
    std::string take()
    {
        std::string text = held ? held->text() : "";
        held.reset();
        return text;
    }

private:
    std::optional<HeldMessages> held{HeldMessages::From::errors};
};

/// The length of the voice, for a clock without sound.
Stage::Voice voiceOfMedia()
{
    OggSound track;
    std::vector<char> samples;
    int format = 0;
    unsigned rate = 0;
    track.loadOGG("sound/magpie_vocal.ogg", samples, format, rate);
    return {track.numSamples, static_cast<int>(rate)};
}

} // namespace

Preparation::Preparation(Rank& own, const Options& given, MpiTransport& transport,
                         Protocol& protocol)
    : rank(own), options(given), net(transport), talk(protocol)
{
}

void Preparation::step(const std::function<std::uint64_t()>& work)
{
    Readiness own;
    try {
        own.number = work();
    } catch (const std::exception& error) {
        own.problem = error.what();
    }
    exchangeReadiness(talk, rank.hosts, own);
}

void Preparation::meet()
{
    rank.number = net.rank();
    rank.hosts = exchangeNames(talk, KELPIX_VERSION, hostName());
    rank.plan = agreeOnPlan(talk, options, rank.isFirst(), rank.hosts.size());
}

void Preparation::enter()
{
    step([this] {
        enterMedia(options.media.empty() ? fs::path(rank.plan.layout.media) : options.media);
        openWindow();
        rank.media = hashOfMedia();
        return rank.media;
    });
}

void Preparation::make()
{
    step([this] {
        rank.messages.emplace();
        HeldErrors errors;
        const record::ExitGuard guard([&] { endAll(rank.readersComplaint(errors.take())); });
        if (options.pattern) {
            rank.pattern.emplace(rank.plan.layout, rank.number, "fonts/ChalkboardBold.ttf");
            return std::uint64_t{0};
        }
        makeScene();
        return static_cast<std::uint64_t>(rank.scene->numSteps());
    });
}

void Preparation::openWindow()
{
    const WallTile& tile = rank.tile();
    if (!options.simulate && tile.host != hostName()) {
        throw std::runtime_error("rank " + std::to_string(rank.number) + " belongs on " +
                                 tile.host + ", not here");
    }
    if (!tile.display.empty()) {
        setenv("DISPLAY", tile.display.c_str(), 1);
    } else if (!options.simulate) {
        setenv("DISPLAY", ":0", 0);
    }
    throwDisplayFailures();
    const PixelRect& place = tile.desktop;
    const PixelRect& part = tile.wall;
    try {
        rank.window.emplace(place.x, place.y, place.w, place.h, part.x,
                            rank.plan.layout.height - part.y - part.h);
        rank.window->open();
    } catch (const DisplayFailure& failure) {
        throw std::runtime_error(std::string("no display: ") + failure.what());
    }
    checkLimits(tile);
}

void Preparation::makeScene()
{
    const Stage::Voice voice = options.isVirtual ? voiceOfMedia() : Stage::Voice{};
    rank.scene.emplace(rank.plan.layout, rank.tile(), voice);
    rank.scene->begin(rank.plan.seed);
    if (rank.isFirst() && !options.isVirtual) {
        rank.sound.emplace();
    }
}

/// Takes the step that was interrupted, as one that failed: the others wait for it.
void Preparation::endAll(const std::string& why)
{
    try {
        step([&why]() -> std::uint64_t { throw std::runtime_error(why); });
    } catch (const StartError& error) {
        if (rank.isFirst()) {
            sayLines(error.what());
        }
        net.leave();
    } catch (const WallError&) {
        // One of the ranks has said why.
    }
}

} // namespace wall
