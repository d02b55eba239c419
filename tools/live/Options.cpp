#include "Options.h"

#include <algorithm>
#include <limits>

namespace live {

namespace {

using commandline::number;

commandline::Value seed(std::optional<unsigned>& target)
{
    constexpr unsigned LARGEST = std::numeric_limits<unsigned>::max();
    return {commandline::rangeOf(0U, LARGEST), [&target](const std::string& text) {
                return commandline::readNumber(text, 0U, LARGEST, target.emplace());
            }};
}

std::vector<commandline::Option> tableOf(Options& options)
{
    constexpr std::uint16_t LAST_PORT = std::numeric_limits<std::uint16_t>::max();
    return {
        {"--bind", "ADDRESS",
         "listens at this address of the machine (default 127.0.0.1: to\n"
         "programs on it alone); 0.0.0.0 listens to every network",
         commandline::text(options.bind)},
        {"--port", "N", "of UDP, 1 to 65535 (default 9000)",
         number(options.port, std::uint16_t{1}, LAST_PORT)},
        {"--fullscreen", "", "gives the window the whole screen",
         commandline::flag(options.fullscreen)},
        {"--loop", "", "begins anew at the end of the voice", commandline::flag(options.loop)},
        {"--media", "DIR",
         "the media to play, as DIR alone (default: this folder if\n"
         "it holds data/mocap.txt, else the installed media)",
         commandline::text(options.media)},
        {"--seed", "N", "another school of fish (default: the time)", seed(options.seed)},
        {"--record", "FILE",
         "writes what the figures danced as a recording, which\n"
         "data/mocap.txt can name",
         commandline::text(options.record)},
        {"--force", "", "lets --record replace a file", commandline::flag(options.force)},
        {"--status", "FILE",
         "keeps a line there that tells how it does, a new one each\n"
         "second",
         commandline::text(options.status)},
    };
}

} // namespace

Options parseOptions(const std::vector<std::string>& arguments)
{
    Options options;
    const commandline::Arguments parsed =
        commandline::parse(arguments, tableOf(options), commandline::Rest::anywhere);
    options.action = parsed.action;
    commandline::takeFolder(parsed.rest, options.media);
    if (options.action == commandline::Action::work && options.force && options.record.empty()) {
        throw commandline::UsageError("--force goes with --record");
    }
    return options;
}

std::string usage()
{
    Options unused;
    return "usage: kelpix-live [option ...] [DIR]\n"
           "\n"
           "Plays the scene in a window. Its figures follow a person: whatever sends their\n"
           "places as OSC messages over UDP, such as /figure/1 0.5 0.5.\n"
           "\n" +
           commandline::describe(tableOf(unused));
}

} // namespace live
