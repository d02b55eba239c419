#include "Options.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>

namespace record {

namespace {

using commandline::number;
using commandline::UsageError;
using commandline::Value;

constexpr int LARGEST_SIZE = 65536; // GL's own limit is checked with the context
constexpr int LARGEST_FPS = 1000;

/// The extensions from which ffmpeg tells the format of a film, with sound where the format has it.
constexpr std::array FILM_KINDS = {".mp4", ".m4v", ".mov",  ".mkv", ".webm", ".gif", ".avi",
                                   ".flv", ".mpg", ".mpeg", ".nut", ".ogv",  ".ts",  ".wmv"};

constexpr std::array WORKS = {"--out", "--live", "--png", "--sheet", "--hash", "--flashes"};

template<typename Texts>
bool isOneOf(const Texts& texts, const std::string& text)
{
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

Value film(std::filesystem::path& target)
{
    return {"a name whose extension tells the kind of film, such as film.mp4",
            [&target](const std::string& text) {
                target = text;
                const std::filesystem::path extension = target.extension();
                if (extension == ".png") {
                    throw UsageError("--out makes a film; a picture takes --png " + text);
                }
                return !extension.empty() && extension != ".";
            }};
}

Value picture(std::filesystem::path& target)
{
    return {"a name that ends in .png", [&target](const std::string& text) {
                target = text;
                return target.extension() == ".png";
            }};
}

Value liveFormat(LiveFormat& target)
{
    return {"y4m or raw", [&target](const std::string& text) {
                target = text == "y4m"   ? LiveFormat::y4m
                         : text == "raw" ? LiveFormat::raw
                                         : LiveFormat::none;
                return target != LiveFormat::none;
            }};
}

bool readTime(const std::string& text, Microseconds least, Microseconds& target)
{
    const auto time = parseTime(text);
    target = time.value_or(0);
    return time && *time >= least;
}

Value moment(Microseconds& target)
{
    return {"seconds from 0 to 36000, such as 12.5",
            [&target](const std::string& text) { return readTime(text, 0, target); }};
}

Value length(Microseconds& target)
{
    return {"more than 0 and at most 36000 seconds, such as 7.5",
            [&target](const std::string& text) { return readTime(text, 1, target); }};
}

Value tile(std::optional<Tile>& target)
{
    return {"a column and a row, counted from 0 at the top left",
            [&target](const std::string& text) {
                constexpr int MOST = 1000000;
                const std::size_t space = text.find(' ');
                target.emplace();
                return space != std::string::npos &&
                       commandline::readNumber(text.substr(0, space), 0, MOST, target->column) &&
                       commandline::readNumber(text.substr(space + 1), 0, MOST, target->row);
            }};
}

Value size(int& width, int& height)
{
    return {"width x height in pixels, such as 1080x1080",
            [&width, &height](const std::string& text) {
                const std::size_t cross = text.find('x');
                return cross != std::string::npos &&
                       commandline::readNumber(text.substr(0, cross), 1, LARGEST_SIZE, width) &&
                       commandline::readNumber(text.substr(cross + 1), 1, LARGEST_SIZE, height);
            }};
}

/// \param options  borrowed: gets the values
std::vector<commandline::Option> tableOf(Options& options)
{
    return {
        {"--out", "FILM", "the extension tells the kind: .mp4, .mkv, .webm, .gif ...",
         film(options.out)},
        {"--live", "KIND", "plays to standard output, in real time, as y4m or raw pixels",
         liveFormat(options.live)},
        {"--png", "PICTURE", "the picture of one moment, as PNG", picture(options.png)},
        {"--sheet", "PICTURE", "five moments of the scene side by side, as PNG",
         picture(options.sheet)},
        {"--force", "", "replaces a file that has the name of the film or picture",
         commandline::flag(options.force)},
        {"--hash", "", "prints the scene's state at one moment as numbers",
         commandline::flag(options.hash)},
        {"--flashes", "", "counts the flashes of the film instead of making it (WCAG 2.3.1)",
         commandline::flag(options.flashes)},
        {"--at", "S", "that moment, or where the film begins, in seconds (default 0)",
         moment(options.at)},
        {"--seconds", "S", "length of the film (default 30; --live goes on with the voice)",
         length(options.seconds)},
        {"--size", "WxH", "pixels (default 740x740)", size(options.width, options.height)},
        {"--fps", "N",
         "frames of the film per second (default " + std::to_string(Rates::REDRAWS) +
             ", the scene's own rate)",
         number(options.fps, 1, LARGEST_FPS)},
        {"--seed", "N", "another school of fish (default 1)",
         number(options.seed, 0U, std::numeric_limits<unsigned>::max())},
        {"--media", "DIR",
         "the media to play (default: this folder if it holds\n"
         "data/mocap.txt, else the installed media)",
         commandline::text(options.media)},
        {"--script", "FILE",
         "mouse and keyboard, written down: recording.md, in\n"
         "/usr/share/doc/kelpix where it is installed, has the words",
         commandline::text(options.script)},
        {"--replay", "LOG", "plays a show that kelpix-wall has logged, instead",
         commandline::text(options.replay)},
        {"--tile", "C R", "one tile of that wall, by column and row (default: the wall)",
         tile(options.tile)},
    };
}

/// Any other extension needs an option that tells ffmpeg the format.
void checkFilmKind(const Options& options)
{
    const std::string extension = options.out.extension();
    const std::vector<std::string>& given = options.encoderOptions;
    if (!isOneOf(FILM_KINDS, extension) && !isOneOf(given, "-f")) {
        throw UsageError("there is no kind of film called " + extension +
                         "; .mp4 suits most, and -- -f FORMAT tells ffmpeg another one");
    }
}

/// What is to be made, of which each run makes one: the options that say so, in the order given.
std::vector<std::string> chosenWorks(const std::vector<std::string>& given)
{
    std::vector<std::string> works;
    for (const std::string& option : given) {
        if (isOneOf(WORKS, option) && !isOneOf(works, option)) {
            works.push_back(option);
        }
    }
    return works;
}

/// A sheet shows the whole scene, as it is without somebody at the window.
void checkSheet(const std::vector<std::string>& given)
{
    for (const std::string& option : given) {
        if (option != "--sheet" && option != "--size" && option != "--seed" &&
            option != "--media" && option != "--force") {
            throw UsageError("--sheet does not go with " + option);
        }
    }
}

/// A show that is played again brings its own school and input.
void checkReplay(const std::vector<std::string>& given)
{
    for (const std::string& option : given) {
        if (option == "--seed" || option == "--script" || option == "--sheet" ||
            option == "--live") {
            throw UsageError("--replay does not go with " + option);
        }
    }
}

/// A word alone is the film, or the picture, that --out or --png would name.
void takeWord(commandline::Arguments& arguments, Options& options)
{
    if (arguments.rest.size() > 1) {
        throw UsageError("\"" + arguments.rest[1] + "\" is one word too many");
    }
    for (const std::string& word : arguments.rest) {
        const bool isPicture = std::filesystem::path(word).extension() == ".png";
        const std::string option = isPicture ? "--png" : "--out";
        commandline::parse({option, word}, tableOf(options));
        arguments.given.push_back(option);
    }
}

/// Checks the options together.
/// \param given  their names
void check(const Options& options, const std::vector<std::string>& given)
{
    const std::vector<std::string> works = chosenWorks(given);
    if (works.empty()) {
        throw UsageError(
            "--out FILE, --live KIND, --png FILE, --sheet FILE, --hash or --flashes is missing");
    }
    if (works.size() > 1) {
        throw UsageError(works[0] + " and " + works[1] + " do not go together");
    }
    if (!options.replay.empty()) {
        checkReplay(given);
    } else if (options.tile) {
        throw UsageError("--tile goes with --replay");
    }
    if (!options.sheet.empty()) {
        checkSheet(given);
    }
    if (options.out.empty() && !options.encoderOptions.empty()) {
        throw UsageError("options after -- are for films");
    }
    if (!options.out.empty()) {
        checkFilmKind(options);
    }
    // They store color for 2 x 2 pixels at once.
    const bool halved = !options.out.empty() || options.live == LiveFormat::y4m;
    if (halved && (options.width % 2 != 0 || options.height % 2 != 0)) {
        throw UsageError("--size of a film takes even numbers, not " +
                         std::to_string(options.width) + "x" + std::to_string(options.height));
    }
}

} // namespace

Options parseOptions(const std::vector<std::string>& arguments)
{
    Options options;
    const auto end = std::find(arguments.begin(), arguments.end(), "--");
    commandline::Arguments parsed =
        commandline::parse({arguments.begin(), end}, tableOf(options), commandline::Rest::anywhere);
    options.action = parsed.action;
    if (options.action == commandline::Action::work) {
        if (end != arguments.end()) {
            options.encoderOptions.assign(std::next(end), arguments.end());
        }
        takeWord(parsed, options);
        check(options, parsed.given);
        options.sizeGiven = isOneOf(parsed.given, "--size");
        if (!options.replay.empty() && !isOneOf(parsed.given, "--seconds")) {
            options.seconds = LONGEST_TIME; // all of it
        }
        if (options.live != LiveFormat::none && !isOneOf(parsed.given, "--seconds")) {
            options.seconds = LONGEST_TIME;
            options.untilVoiceEnds = true;
        }
    }
    return options;
}

std::string usage()
{
    Options unused;
    return "usage: kelpix-record [--out] FILM [option ...] [-- FFMPEG-OPTION ...]\n"
           "       kelpix-record [--png] PICTURE [option ...]\n"
           "       kelpix-record --live y4m|raw [option ...] | COMMAND\n"
           "       kelpix-record --sheet PICTURE [option ...]\n"
           "       kelpix-record --hash [option ...]\n"
           "       kelpix-record --flashes [option ...]\n"
           "\n"
           "Plays the scene without a window, and saves it as a film with its sound, or one\n"
           "moment of it as a picture. The same options give the same frames.\n"
           "\n" +
           commandline::describe(tableOf(unused)) +
           "\n"
           "Options after -- go to ffmpeg, which encodes the film.\n";
}

} // namespace record
