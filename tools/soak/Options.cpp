#include "Options.h"

#include <limits>

namespace soak {

namespace {

using commandline::number;
using commandline::Value;

constexpr double MOST_HOURS = 10000;
constexpr double LONGEST_VOICE = 100000; // seconds
constexpr int LONGEST_INTERVAL = 100000; // minutes

/// The seeds of the command line, which replace those of the default.
/// \param seeds  borrowed: gets them
Value seedsOf(std::vector<unsigned>& seeds)
{
    constexpr unsigned MOST = std::numeric_limits<unsigned>::max();
    return {commandline::rangeOf(0U, MOST), [&seeds](const std::string& text) {
                unsigned seed = 0;
                const bool good = commandline::readNumber(text, 0U, MOST, seed);
                if (good) {
                    seeds.push_back(seed);
                }
                return good;
            }};
}

Value voice(std::optional<double>& seconds)
{
    return {commandline::rangeOf(0.0, LONGEST_VOICE), [&seconds](const std::string& text) {
                return commandline::readNumber(text, 0.0, LONGEST_VOICE, seconds.emplace());
            }};
}

/// \param options  borrowed, like \p seeds: gets the values
std::vector<commandline::Option> tableOf(Options& options, std::vector<unsigned>& seeds)
{
    return {
        {"--hours", "H", "hours of the scene, 0 to 10000 (default 72)",
         number(options.hours, 0.0, MOST_HOURS)},
        {"--seed", "N",
         "seed of the random numbers; several of them give several runs\n"
         "(default: 1, then 2)",
         seedsOf(seeds)},
        {"--media", "DIR",
         "the folder that is played (default: this one if it\n"
         "holds data/mocap.txt, else the installed media)",
         commandline::text(options.media)},
        {"--voice", "SECONDS",
         "length of the voice that the figures follow; 0: they rest\n"
         "(default: that of the folder's voice)",
         voice(options.voiceSeconds)},
        {"--every", "MINUTES", "minutes of the scene between two lines (default 60)",
         number(options.every, 1, LONGEST_INTERVAL)},
    };
}

} // namespace

Options parseOptions(const std::vector<std::string>& arguments)
{
    Options options;
    std::vector<unsigned> seeds;
    options.action = commandline::parse(arguments, tableOf(options, seeds)).action;
    if (!seeds.empty()) {
        options.seeds = seeds;
    }
    return options;
}

std::string usage()
{
    Options unused;
    return "usage: kelpix-soak [option ...]\n"
           "\n"
           "Plays days of the scene, as fast as they go and without drawing, prints what the\n"
           "scene holds as time goes by, and judges whether it holds more and more. The exit\n"
           "status is 0 when all goals are met, 1 when one is missed, 2 for a bad option.\n"
           "\n" +
           commandline::describe(tableOf(unused, unused.seeds));
}

} // namespace soak
