#include "Options.h"

#include <bit>
#include <charconv>
#include <system_error>

namespace media {

namespace {

template<typename Number>
Number parseNumber(const std::string& option, const std::string& text, Number low, Number high)
{
    Number value{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end || value < low || value > high) {
        throw UsageError(option + " takes a number from " + std::to_string(low) + " to " +
                         std::to_string(high) + ", not \"" + text + "\"");
    }
    return value;
}

const Asset* findAsset(const std::string& name)
{
    std::string names;
    for (const Asset& asset : assets()) {
        if (name == asset.name) {
            return &asset;
        }
        names += names.empty() ? "" : ", ";
        names += asset.name;
    }
    throw UsageError("--only takes one of " + names + ", not \"" + name + "\"");
}

} // namespace

Options parseOptions(const std::vector<std::string>& arguments)
{
    Options options;
    options.request.font = KELPIX_FONT;
    options.request.fontLicense = KELPIX_FONT_LICENSE;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& option = arguments[i];
        if (option == "--help" || option == "--version") {
            options.help = option == "--help";
            options.version = !options.help;
            return options;
        }
        const bool known = option == "--out" || option == "--check" || option == "--seed" ||
                           option == "--water" || option == "--seconds" || option == "--only" ||
                           option == "--font";
        if (!known) {
            throw UsageError("unknown option \"" + option + "\"");
        }
        if (i + 1 == arguments.size() || arguments[i + 1].empty()) {
            throw UsageError(option + " needs a value");
        }
        const std::string& value = arguments[++i];
        if (option == "--out") {
            options.out = value;
        } else if (option == "--check") {
            options.check = value;
        } else if (option == "--seed") {
            options.request.seed = parseNumber<std::uint64_t>(option, value, 0, UINT64_MAX);
        } else if (option == "--water") {
            const int size = parseNumber(option, value, 64, 4096);
            if (!std::has_single_bit(static_cast<unsigned>(size))) {
                throw UsageError("--water takes a power of two, not \"" + value + "\"");
            }
            options.request.waterSize = size;
        } else if (option == "--seconds") {
            options.request.seconds = parseNumber(option, value, 20, 600);
        } else if (option == "--only") {
            options.only = findAsset(value);
        } else {
            options.request.font = value;
            options.request.fontLicense.clear();
        }
    }
    if (!options.check.empty()) {
        if (arguments.size() > 2) {
            throw UsageError("--check DIR goes with no other option");
        }
        return options;
    }
    if (options.out.empty()) {
        throw UsageError("--out DIR is missing");
    }
    return options;
}

std::string usage()
{
    std::string text =
        "usage: kelpix-media --out DIR [option ...]\n"
        "       kelpix-media --check DIR\n"
        "\n"
        "Makes the pictures, sounds, models and recordings that the scene plays.\n"
        "The same options make the same bytes.\n"
        "\n"
        "  --out DIR      the folder that gets data/, sound/ and fonts/\n"
        "  --seed N       another set of the same kind (default 1)\n"
        "  --water SIZE   width of the water picture, a power of two from 64 to\n"
        "                 4096 pixels (default 1024)\n"
        "  --seconds N    length of the voice and the dance, 20 to 600 (default 120)\n"
        "  --only ASSET   makes a single asset of the list below\n"
        "  --font FILE    another font for the scene's text; its licence is yours to\n"
        "                 look after\n"
        "  --check DIR    says of each file of a folder, yours too, whether the scene can\n"
        "                 play it and how it will look and sound; the exit status is 0\n"
        "                 when nothing is wrong, hints aside\n"
        "  --help         prints this text\n"
        "  --version      prints the version\n"
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
