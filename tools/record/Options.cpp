#include "Options.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <limits>

namespace record {

namespace {

constexpr int LARGEST_SIZE = 65536; // GL's own limit shows when the context is made
constexpr int LARGEST_FPS = 1000;

/// The films that ffmpeg makes without being told more than a name, with pictures and, where the
/// kind can hold it, sound.
constexpr std::array FILM_KINDS = {".mp4", ".m4v", ".mov",  ".mkv", ".webm", ".gif", ".avi",
                                   ".flv", ".mpg", ".mpeg", ".nut", ".ogv",  ".ts",  ".wmv"};

template<typename Number>
bool readNumber(const std::string& text, Number low, Number high, Number& value)
{
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end && value >= low && value <= high;
}

[[noreturn]] void refuse(const std::string& option, const std::string& wanted,
                         const std::string& text)
{
    throw UsageError(option + " takes " + wanted + ", not \"" + text + "\"");
}

void setOut(Options& options, const std::string& text)
{
    options.out = text;
    const std::filesystem::path extension = options.out.extension();
    if (extension.empty() || extension == ".") {
        refuse("--out", "a name whose extension tells the kind of film, such as film.mp4", text);
    }
    if (extension == ".png") {
        throw UsageError("--out makes a film; a picture takes --png " + text);
    }
}

void setPng(Options& options, const std::string& text)
{
    options.png = text;
    if (options.png.extension() != ".png") {
        refuse("--png", "a name that ends in .png", text);
    }
}

void setAt(Options& options, const std::string& text)
{
    const auto time = parseTime(text);
    if (!time) {
        refuse("--at", "seconds from 0 to 36000, such as 12.5", text);
    }
    options.at = *time;
}

void setSeconds(Options& options, const std::string& text)
{
    const auto time = parseTime(text);
    if (!time || *time == 0) {
        refuse("--seconds", "more than 0 and at most 36000 seconds, such as 7.5", text);
    }
    options.seconds = *time;
}

void setSize(Options& options, const std::string& text)
{
    const std::size_t cross = text.find('x');
    if (cross == std::string::npos ||
        !readNumber(text.substr(0, cross), 1, LARGEST_SIZE, options.width) ||
        !readNumber(text.substr(cross + 1), 1, LARGEST_SIZE, options.height)) {
        refuse("--size", "width x height in pixels, such as 1080x1080", text);
    }
}

void setFps(Options& options, const std::string& text)
{
    if (!readNumber(text, 1, LARGEST_FPS, options.fps)) {
        refuse("--fps", "a whole number from 1 to " + std::to_string(LARGEST_FPS), text);
    }
}

void setSeed(Options& options, const std::string& text)
{
    constexpr unsigned MOST = std::numeric_limits<unsigned>::max();
    if (!readNumber(text, 0U, MOST, options.seed)) {
        refuse("--seed", "a whole number from 0 to " + std::to_string(MOST), text);
    }
}

void setMedia(Options& options, const std::string& text)
{
    options.media = text;
}

void setScript(Options& options, const std::string& text)
{
    options.script = text;
}

struct Setter {
    const char* option;
    void (*set)(Options& options, const std::string& text);
};

constexpr std::array SETTERS = {
    Setter{"--out", setOut},         Setter{"--png", setPng},     Setter{"--at", setAt},
    Setter{"--seconds", setSeconds}, Setter{"--size", setSize},   Setter{"--fps", setFps},
    Setter{"--seed", setSeed},       Setter{"--media", setMedia}, Setter{"--script", setScript},
};

/// Another extension is for those who tell ffmpeg the format.
void checkFilmKind(const Options& options)
{
    const std::string extension = options.out.extension();
    const std::vector<std::string>& given = options.encoderOptions;
    const bool known =
        std::find(FILM_KINDS.begin(), FILM_KINDS.end(), extension) != FILM_KINDS.end();
    if (!known && std::find(given.begin(), given.end(), "-f") == given.end()) {
        throw UsageError("there is no kind of film called " + extension +
                         "; .mp4 suits most, and -- -f FORMAT tells ffmpeg another one");
    }
}

/// What no single option can tell.
void check(const Options& options)
{
    if (options.out.empty() && options.png.empty() && !options.hash) {
        throw UsageError("--out FILE, --png FILE or --hash is missing");
    }
    if (options.hash && !(options.out.empty() && options.png.empty())) {
        throw UsageError("--hash makes neither a film nor a picture");
    }
    if (!options.out.empty() && !options.png.empty()) {
        throw UsageError("--out and --png do not go together");
    }
    if (options.out.empty() && !options.encoderOptions.empty()) {
        throw UsageError("options behind -- are for films");
    }
    if (!options.out.empty()) {
        checkFilmKind(options);
    }
    // Films store colour for 2 x 2 pixels at once.
    if (!options.out.empty() && (options.width % 2 != 0 || options.height % 2 != 0)) {
        throw UsageError("--size of a film takes even numbers, not " +
                         std::to_string(options.width) + "x" + std::to_string(options.height));
    }
}

} // namespace

Options parseOptions(const std::vector<std::string>& arguments)
{
    Options options;
    for (auto at = arguments.begin(); at != arguments.end(); ++at) {
        if (*at == "--help" || *at == "--version") {
            options.help = *at == "--help";
            options.version = !options.help;
            return options;
        }
        if (*at == "--hash") {
            options.hash = true;
            continue;
        }
        if (*at == "--") {
            options.encoderOptions.assign(std::next(at), arguments.end());
            break;
        }
        const auto* const setter =
            std::find_if(SETTERS.begin(), SETTERS.end(),
                         [&](const Setter& candidate) { return *at == candidate.option; });
        if (setter == SETTERS.end()) {
            throw UsageError("unknown option \"" + *at + "\"");
        }
        if (std::next(at) == arguments.end() || std::next(at)->empty()) {
            throw UsageError(*at + " needs a value");
        }
        setter->set(options, *++at);
    }
    check(options);
    return options;
}

const char* usage()
{
    return "usage: kelpix-record --out FILM [option ...] [-- FFMPEG-OPTION ...]\n"
           "       kelpix-record --png PICTURE [option ...]\n"
           "       kelpix-record --hash [option ...]\n"
           "\n"
           "Plays the scene without a window, as fast as the machine can, and saves it as a\n"
           "film with its sound, or one moment of it as a picture. The same options give the\n"
           "same frames.\n"
           "\n"
           "  --out FILM     the extension tells the kind: .mp4, .mkv, .webm, .gif ...\n"
           "  --png PICTURE  the picture of one moment, as PNG\n"
           "  --hash         prints the scene's state at one moment as numbers\n"
           "  --at S         that moment, or where the film begins, in seconds (default 0)\n"
           "  --seconds S    length of the film (default 30)\n"
           "  --size WxH     pixels (default 740x740)\n"
           "  --fps N        frames of the film per second (default 40, the scene's own rate)\n"
           "  --seed N       another school of fish (default 1)\n"
           "  --media DIR    the media to play (default: this folder if it holds\n"
           "                 data/mocap.txt, else the installed media)\n"
           "  --script FILE  mouse and keyboard, written down: recording.md, in\n"
           "                 /usr/share/doc/kelpix where it is installed, has the words\n"
           "  --help         prints this text\n"
           "  --version      prints the version\n"
           "\n"
           "Options behind -- go to ffmpeg, which encodes the film.\n";
}

} // namespace record
