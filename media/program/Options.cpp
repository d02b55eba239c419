#include "Options.h"

#include "PoseTable.h"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace media {

namespace {

using commandline::number;
using commandline::UsageError;
using commandline::Value;

constexpr int LEAST_WATER = 64; // pixels
constexpr int MOST_WATER = 4096;
constexpr int WIDE_WATER = 2048; // as much of it is shown larger
constexpr double SHORTEST = SHORTEST_DANCE;
constexpr double LONGEST = 600; // seconds; the voice is made in memory

Value waterSize(int& target)
{
    return {"a power of two from " + std::to_string(LEAST_WATER) + " to " +
                std::to_string(MOST_WATER),
            [&target](const std::string& text) {
                return commandline::readNumber(text, LEAST_WATER, MOST_WATER, target) &&
                       std::has_single_bit(static_cast<unsigned>(target));
            }};
}

Value asset(const Asset*& target)
{
    std::string names;
    for (const Asset& asset : assets()) {
        names += (names.empty() ? "" : ", ") + std::string(asset.name);
    }
    return {"one of " + names, [&target](const std::string& text) {
                const auto found =
                    std::find_if(assets().begin(), assets().end(),
                                 [&](const Asset& candidate) { return text == candidate.name; });
                target = found == assets().end() ? nullptr : &*found;
                return target != nullptr;
            }};
}

Value preview(std::filesystem::path& target)
{
    return {"a name that ends in .png", [&target](const std::string& text) {
                target = text;
                return target.extension() == ".png";
            }};
}

/// Refuses options beside --check that mean nothing there.
void checkTogether(const Options& options, const std::vector<std::string>& given)
{
    const bool preview = !options.preview.empty();
    if (preview && options.check.empty()) {
        throw UsageError("--preview PICTURE goes with --check DIR");
    }
    if (options.check.empty()) {
        return;
    }
    for (const std::string& option : given) {
        if (option != "--check" && option != "--preview" && !(preview && option == "--force")) {
            throw UsageError("--check DIR goes with no other option but --preview PICTURE");
        }
    }
}

/// Makes the dance the only asset when it is made of a table.
void choosePoses(Options& options)
{
    if (options.request.table.empty()) {
        return;
    }
    if (options.only != nullptr && options.only != &danceAsset()) {
        throw UsageError("--dance TABLE makes the dance, not --only " +
                         std::string(options.only->name));
    }
    options.only = &danceAsset();
}

/// A font of the user's, whose license this program does not know.
Value font(Request& request)
{
    return {"a file", [&request](const std::string& text) {
                request.font = text;
                request.fontLicense.clear();
                return true;
            }};
}

/// \param options  borrowed: gets the values
std::vector<commandline::Option> tableOf(Options& options)
{
    Request& request = options.request;
    return {
        {"--out", "DIR", "the folder that gets data/, sound/ and fonts/",
         commandline::text(options.out)},
        {"--force", "",
         "replaces files that are there with other contents; without\n"
         "it nothing is written when there is one",
         commandline::flag(options.force)},
        {"--seed", "N", "another set of the same kind (default 1)",
         number<std::uint64_t>(request.seed, 0, UINT64_MAX)},
        {"--water", "SIZE",
         "width of the water picture, a power of two from 64 to\n"
         "4096 pixels (default 1024, with --wide 2048)",
         waterSize(request.waterSize)},
        {"--wide", "",
         "a set for a window of 16 to 9, zoomed in by three steps of\n"
         "the wheel",
         commandline::flag(request.wide)},
        {"--seconds", "N",
         "length of the voice and the dance, 5 to 600 (default 120; a\n"
         "dance that is made alone is as long as the folder's voice)",
         number(request.seconds, SHORTEST, LONGEST)},
        {"--only", "ASSET", "makes a single asset of the list below", asset(options.only)},
        {"--dance", "TABLE",
         "makes the dance alone, of a table of poses: lines of\n"
         "TIME FIGURE X Y, or TIME FIGURE home",
         commandline::text(request.table)},
        {"--font", "FILE",
         "another font for the scene's text; its license is yours to\n"
         "look after",
         font(request)},
        {"--check", "DIR",
         "says of each file of a folder, yours too, whether the scene\n"
         "can play it and how it will look and sound; the exit status\n"
         "is 0 when nothing is wrong, hints aside",
         commandline::text(options.check)},
        {"--preview", "PICTURE",
         "with --check: the scene of that folder at five moments, as the\n"
         "program shows it, in a PNG file",
         preview(options.preview)},
    };
}

/// A folder alone may be meant either way, and to make media is not to look at them.
void refuseWords(const Options& options, const std::vector<std::string>& words)
{
    if (words.empty()) {
        return;
    }
    const std::string& word = words.front();
    throw UsageError(options.check.empty() && options.out.empty()
                         ? "--out " + word + " makes media there, --check " + word +
                               " looks at them"
                         : "\"" + word + "\" is one word too many");
}

} // namespace

Options parseOptions(const std::vector<std::string>& arguments)
{
    Options options;
    options.request.font = KELPIX_FONT;
    options.request.fontLicense = KELPIX_FONT_LICENSE;
    const commandline::Arguments parsed =
        commandline::parse(arguments, tableOf(options), commandline::Rest::anywhere);
    options.action = parsed.action;
    if (options.action != commandline::Action::work) {
        return options;
    }
    refuseWords(options, parsed.rest);
    checkTogether(options, parsed.given);
    if (options.check.empty() && options.out.empty()) {
        throw UsageError("--out DIR or --check DIR is missing");
    }
    const auto isGiven = [&parsed](const char* option) {
        return std::find(parsed.given.begin(), parsed.given.end(), option) != parsed.given.end();
    };
    options.isLengthGiven = isGiven("--seconds");
    if (options.request.wide && !isGiven("--water")) {
        options.request.waterSize = WIDE_WATER;
    }
    choosePoses(options);
    return options;
}

std::string usage()
{
    Options unused;
    std::string text = "usage: kelpix-media --out DIR [option ...]\n"
                       "       kelpix-media --check DIR [--preview PICTURE]\n"
                       "\n"
                       "Makes the pictures, sounds, models and recordings that the scene plays.\n"
                       "The same options make the same bytes.\n"
                       "\n" +
                       commandline::describe(tableOf(unused)) +
                       "\n"
                       "assets:\n";
    for (const Asset& asset : assets()) {
        std::string name = asset.name;
        name.resize(9, ' ');
        text += "  " + name + asset.about + "\n";
    }
    return text;
}

} // namespace media
