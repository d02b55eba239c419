#include "Options.h"

#include <algorithm>
#include <iterator>

namespace show {

namespace {

using commandline::number;

constexpr double SHORTEST_SHOWING = 5; // seconds
constexpr double LONGEST_SHOWING = 1000000;
constexpr double MOST_PATIENCE = 600;
constexpr int MOST_ZOOM = 20;
constexpr int MOST_MONITORS = 63;

/// A number that may be left out.
template<typename Number>
commandline::Value optional(std::optional<Number>& target, Number low, Number high)
{
    return {commandline::rangeOf(low, high), [&target, low, high](const std::string& text) {
                return commandline::readNumber(text, low, high, target.emplace());
            }};
}

std::vector<commandline::Option> tableOf(Options& options)
{
    return {
        {"--media", "DIR",
         "the folder that is played and watched, as DIR alone (default:\n"
         "this one if it holds data/mocap.txt, else the installed media)",
         commandline::text(options.media)},
        {"--every", "SECONDS",
         "from one showing to the next, 5 or more\n"
         "(default: the length of the folder's voice)",
         optional(options.every, SHORTEST_SHOWING, LONGEST_SHOWING)},
        {"--fullscreen", "", "gives each showing the whole screen",
         commandline::flag(options.look.fullscreen)},
        {"--zoom", "N", "zooms in by N steps of the mouse wheel, -20 to 20",
         number(options.look.zoom, -MOST_ZOOM, MOST_ZOOM)},
        {"--screen", "N",
         "with --fullscreen: on this monitor, counted from 0 as xrandr\n"
         "lists them",
         optional(options.look.monitor, 0, MOST_MONITORS)},
        {"--status", "FILE", "keeps the latest status line there",
         commandline::text(options.statusFile)},
        {"--patience", "SECONDS",
         "a showing that draws no frame for so long is replaced, 1 to 600\n"
         "(default 5)",
         number(options.patience, 1.0, MOST_PATIENCE)},
    };
}

} // namespace

Options parseOptions(const std::vector<std::string>& arguments)
{
    Options options;
    const auto end = std::find(arguments.begin(), arguments.end(), "--");
    const auto parsed =
        commandline::parse({arguments.begin(), end}, tableOf(options), commandline::Rest::anywhere);
    options.action = parsed.action;
    if (parsed.action != commandline::Action::work) {
        return options;
    }
    commandline::takeFolder(parsed.rest, options.media);
    if (options.look.monitor && !options.look.fullscreen) {
        throw commandline::UsageError("--screen needs --fullscreen");
    }
    if (end != arguments.end()) {
        options.command.assign(std::next(end), arguments.end());
        if (options.command.empty()) {
            throw commandline::UsageError("a command has to follow --");
        }
    }
    return options;
}

std::string usage()
{
    Options unused;
    return "usage: kelpix-show [option ...] [DIR] [-- COMMAND ...]\n"
           "\n"
           "Shows the scene again and again, without a gap: before the voice has ended it\n"
           "starts the next showing, puts it in front once it is drawn, and ends the one\n"
           "before. Replaces a showing that hangs or has ended, and begins anew when the\n"
           "media change. With COMMAND it shows that instead of kelpix. Ctrl-C ends it.\n"
           "\n" +
           commandline::describe(tableOf(unused));
}

} // namespace show
