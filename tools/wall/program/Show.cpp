#include "Show.h"

#include "FrameLoop.h"
#include "Launch.h"
#include "Leader.h"
#include "MpiTransport.h"
#include "Notes.h"
#include "Options.h"
#include "Preparation.h"
#include "Protocol.h"
#include "Rank.h"
#include "RollCall.h"
#include "Say.h"
#include "SceneSound.h"

#include <chrono>
#include <optional>
#include <stdexcept>
#include <thread>

namespace wall {

namespace {

namespace fs = std::filesystem;

constexpr int INCOMPLETE = 1;
constexpr int CANNOT_GO_ON = 3;

/// The same options once the working directory is another one.
Options anywhere(Options options)
{
    for (fs::path* path : {&options.log, &options.status, &options.hash, &options.shots}) {
        if (!path->empty()) {
            *path = fs::absolute(*path);
        }
    }
    return options;
}

/// Plays this rank's tile. Throws StartError, WallError.
/// \return the process's exit status
int play(const Options& given, MpiTransport& net)
{
    const Options options = anywhere(given);
    Rank rank;
    Protocol protocol(net, say);
    Preparation preparation(rank, options, net, protocol);
    preparation.meet();
    preparation.enter();
    std::optional<Shots> shots;
    std::optional<Notes> notes;
    preparation.step([&] {
        shots.emplace(options, rank.tile());
        if (rank.isFirst()) {
            notes.emplace(options, rank);
            if (options.osc) {
                rank.figures = listenForFigures(*options.osc);
            }
        }
        return std::uint64_t{0};
    });
    preparation.make();
    if (!rank.isFirst()) {
        FrameLoop(rank, protocol, *shots, nullptr).play();
        return 0;
    }
    Leader leader(options, rank);
    const FrameLoop::First first = {leader, *notes};
    FrameLoop(rank, protocol, *shots, &first).play();
    return notes->areComplete() ? 0 : INCOMPLETE;
}

} // namespace

int playTile(const Options& options)
{
    if (isFirstRank() && !options.isVirtual && !options.pattern &&
        !SceneSound::chooseDevice(KELPIX_MEDIA_FROM_PROGRAM)) {
        say(hostName() + ": no sound device: the voice plays silently");
    }
    quietenTopology();
    MpiTransport net;
    int status = 0;
    try {
        status = play(options, net);
    } catch (const StartError& error) {
        if (net.rank() == 0) {
            sayLines(error.what());
        }
        status = 1;
    } catch (const WallError&) {
        // The launcher ends all ranks with the first one that ends: who says why needs a moment.
        std::this_thread::sleep_for(std::chrono::seconds(1));
        return CANNOT_GO_ON;
    } catch (const std::exception& error) {
        throw std::runtime_error(hostName() + ": " + error.what());
    }
    net.leave();
    return status;
}

} // namespace wall
