#include "Options.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace soak {

namespace {

template<typename Number>
Number parseNumber(const std::string& option, const std::string& text, Number low, Number high)
{
    Number value{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    // The second comparison is false for NaN too.
    if (error != std::errc() || stop != end || !(value >= low && value <= high)) {
        std::string range = std::to_string(low) + " to " + std::to_string(high);
        if constexpr (std::is_floating_point_v<Number>) {
            range = "0 to " + std::to_string(std::lround(high));
        }
        throw UsageError(option + " takes a number from " + range + ", not \"" + text + "\"");
    }
    return value;
}

} // namespace

Options parseOptions(const std::vector<std::string>& arguments)
{
    Options options;
    std::vector<unsigned> seeds;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& option = arguments[i];
        if (option == "--help" || option == "--version") {
            options.help = option == "--help";
            options.version = !options.help;
            return options;
        }
        const bool known = option == "--hours" || option == "--seed" || option == "--media" ||
                           option == "--voice" || option == "--every";
        if (!known) {
            throw UsageError("unknown option \"" + option + "\"");
        }
        if (i + 1 == arguments.size() || arguments[i + 1].empty()) {
            throw UsageError(option + " needs a value");
        }
        const std::string& value = arguments[++i];
        if (option == "--hours") {
            options.hours = parseNumber(option, value, 0.0, 10000.0);
        } else if (option == "--seed") {
            seeds.push_back(parseNumber(option, value, 0u, std::numeric_limits<unsigned>::max()));
        } else if (option == "--media") {
            options.media = value;
        } else if (option == "--voice") {
            options.voiceSeconds = parseNumber(option, value, 0.0, 100000.0);
        } else {
            options.every = parseNumber(option, value, 1, 100000);
        }
    }
    if (!seeds.empty()) {
        options.seeds = seeds;
    }
    return options;
}

std::string usage()
{
    return "usage: kelpix-soak [option ...]\n"
           "\n"
           "Plays days of the scene, as fast as they go and without drawing, prints what the\n"
           "scene holds as time goes by, and judges whether it holds more and more. The exit\n"
           "status is 0 when all goals are met, 1 when one is missed, 2 for a bad option.\n"
           "\n"
           "  --hours H        hours of the scene, 0 to 10000 (default 72)\n"
           "  --seed N         seed of the random numbers; several of them give several runs\n"
           "                   (default: 1, then 2)\n"
           "  --media DIR      the folder that is played (default: this one if it\n"
           "                   holds data/mocap.txt, else the installed media)\n"
           "  --voice SECONDS  length of the voice that the figures follow; 0: they rest\n"
           "                   (default: that of the folder's voice)\n"
           "  --every MINUTES  minutes of the scene between two lines (default 60)\n"
           "  --help           prints this text\n"
           "  --version        prints the version\n";
}

} // namespace soak
