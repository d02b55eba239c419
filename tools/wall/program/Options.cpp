#include "Options.h"

#include <limits>
#include <map>
#include <system_error>
#include <utility>

namespace wall {

namespace {

using commandline::number;
using commandline::UsageError;
using commandline::Value;

constexpr std::uint32_t MOST_FRAMES = std::numeric_limits<std::uint32_t>::max() - 1;

Value fit(std::optional<Fit>& target)
{
    return {"contain or cover", [&target](const std::string& text) {
                target = text == "cover" ? Fit::cover : Fit::contain;
                return text == "cover" || text == "contain";
            }};
}

Value seed(std::optional<unsigned>& target)
{
    constexpr unsigned LARGEST = std::numeric_limits<unsigned>::max();
    return {commandline::rangeOf(0U, LARGEST), [&target](const std::string& text) {
                return commandline::readNumber(text, 0U, LARGEST, target.emplace());
            }};
}

Value address(std::optional<FigureAddress>& target)
{
    return {"[ADDRESS:]PORT, such as 9000 or 0.0.0.0:9000", [&target](const std::string& text) {
                target = figureAddressOf(text);
                return target.has_value();
            }};
}

/// Numbers of frames with commas between them, added to those of earlier options.
Value frameList(std::vector<std::uint32_t>& target)
{
    return {"frames from 1 on, such as 100,200", [&target](const std::string& text) {
                std::istringstream list(text + ",");
                for (std::string word; std::getline(list, word, ',');) {
                    if (!commandline::readNumber(word, 1U, MOST_FRAMES, target.emplace_back())) {
                        return false;
                    }
                }
                return true;
            }};
}

/// \param options  borrowed: gets the values
std::vector<commandline::Option> tableOf(Options& options)
{
    return {
        {"--simulate", "", "shows the whole wall in windows on this desktop",
         commandline::flag(options.simulate)},
        {"--scale", "S", "of the simulated tiles, 0.02 to 1 (default 1)",
         number(options.scale, 0.02, 1.0)},
        {"--pattern", "", "shows a test pattern instead of the scene",
         commandline::flag(options.pattern)},
        {"--fit", "FIT",
         "contain: all of the square scene is on the wall;\n"
         "cover: it fills the wall (default contain)",
         fit(options.fit)},
        {"--loop", "", "begins again at the end of the voice", commandline::flag(options.loop)},
        {"--media", "DIR",
         "the media to play, on each host (default: this folder if it\n"
         "holds data/mocap.txt, else the installed media)",
         commandline::text(options.media)},
        {"--seed", "N", "another school of fish (default: the time)", seed(options.seed)},
        {"--frames", "N", "ends after N frames", number(options.frames, 1U, MOST_FRAMES)},
        {"--virtual", "",
         "plays without sound, as fast as the machines can; one frame is\n"
         "1/40 s of the voice",
         commandline::flag(options.isVirtual)},
        {"--osc", "[ADDRESS:]PORT",
         "OSC messages lead the figures: listens on the first host, at\n"
         "127.0.0.1 unless another address is given",
         address(options.osc)},
        {"--log", "FILE", "writes down the whole show, for kelpix-record to play again",
         commandline::text(options.log)},
        {"--status", "FILE",
         "keeps the latest line there, one a second: rate, skew,\n"
         "slowest host, state",
         commandline::text(options.status)},
        {"--hash", "FILE", "writes a line for each frame: its number and the scene's state",
         commandline::text(options.hash)},
        {"--shots", "DIR", "saves pictures there: COLUMN-ROW-FRAME.png of each tile ...",
         commandline::text(options.shots)},
        {"--shot-at", "N[,N...]", "... in these frames", frameList(options.shotFrames)},
    };
}

/// Refuses to write two files, or one and the wall's description, in one place: one of them would
/// be lost.
void checkFiles(const Options& options)
{
    namespace fs = std::filesystem;
    const auto placeOf = [](const fs::path& path) { return fs::absolute(path).lexically_normal(); };
    std::map<fs::path, std::string> names = {
        {placeOf(options.description), "the wall's description"},
        {placeOf(options.description.string() + ".more"), "the wall's second file"}};
    for (const auto& [name, path] : {std::pair{"--log", &options.log},
                                     {"--status", &options.status},
                                     {"--hash", &options.hash}}) {
        std::error_code error;
        const fs::file_status there = fs::status(*path, error);
        if (path->empty() || (fs::exists(there) && !fs::is_regular_file(there))) {
            continue; // such as a terminal, which takes the lines of both
        }
        const auto [other, isNew] = names.emplace(placeOf(*path), name);
        if (!isNew) {
            throw UsageError(std::string(name) + " would replace " + other->second);
        }
    }
}

void check(const Options& options, const std::vector<std::string>& given,
           const std::vector<std::string>& words)
{
    const auto isGiven = [&given](const char* name) {
        return std::find(given.begin(), given.end(), name) != given.end();
    };
    if (words.size() != 1) {
        throw UsageError(words.empty() ? "the wall's description is missing"
                                       : "\"" + words[1] + "\" is one word too many");
    }
    if (isGiven("--scale") && !options.simulate) {
        throw UsageError("--scale goes with --simulate");
    }
    if (options.shots.empty() != options.shotFrames.empty()) {
        throw UsageError("--shots and --shot-at go together");
    }
    if (options.pattern) {
        for (const char* name : {"--loop", "--osc", "--log", "--hash"}) {
            if (isGiven(name)) {
                throw UsageError(std::string("--pattern does not go with ") + name);
            }
        }
    }
}

} // namespace

Options parseOptions(const std::vector<std::string>& arguments)
{
    Options options;
    const commandline::Arguments parsed =
        commandline::parse(arguments, tableOf(options), commandline::Rest::anywhere);
    options.action = parsed.action;
    if (options.action == commandline::Action::work) {
        check(options, parsed.given, parsed.rest);
        options.description = parsed.rest.front();
        checkFiles(options);
    }
    return options;
}

std::string usage()
{
    Options unused;
    return "usage: kelpix-wall [option ...] DESCRIPTION\n"
           "\n"
           "Shows the scene on a wall of screens, which DESCRIPTION describes: starts itself\n"
           "through Open MPI on each host that stands there, once for each window.\n"
           "\n" +
           commandline::describe(tableOf(unused));
}

} // namespace wall
