#include "Interruption.h"
#include "MediaFolder.h"
#include "MediaToPlay.h"
#include "Printable.h"
#include "Recorder.h"
#include "StandardStreams.h"

#include <cstdio>

namespace {

namespace fs = std::filesystem;
using record::Options;

constexpr const char* PROGRAM = "kelpix-record";
constexpr int FLASHES = 3; // the exit status of a film that flashes too much

/// Makes the options' names of files absolute, and enters the folder of the media.
void enterMedia(Options& options)
{
    const fs::path folder = mediaToPlay(options.media, KELPIX_MEDIA_FROM_PROGRAM);
    enterFolder(folder, {&options.out, &options.png, &options.sheet, &options.replay});
    const std::vector<std::string> missing = MediaFolder::missingFiles();
    if (!missing.empty()) {
        std::string names;
        for (const std::string& name : missing) {
            names += " " + name;
        }
        std::fprintf(stderr, "%s: missing in %s:%s\n", PROGRAM,
                     Files::printable(folder.string()).c_str(), names.c_str());
    }
}

int run(const std::vector<std::string>& arguments)
{
    Options options = record::parseOptions(arguments);
    if (options.action != commandline::Action::work) {
        commandline::answer(options.action, PROGRAM, record::usage());
        return 0;
    }
    record::Script script;
    if (!options.script.empty()) {
        script = record::Script::read(options.script);
    }
    enterMedia(options);
    // A stream leaves nothing behind, so signals may end it at once.
    const bool live = options.live != record::LiveFormat::none;
    if (!live) {
        record::Interruption::watch();
    }
    const record::Outcome outcome = record::runRecorder(options, script);
    std::fprintf(live ? stderr : stdout, "%s\n", outcome.text.c_str());
    return outcome.good ? 0 : FLASHES;
}

/// Runs, and turns a bad script and an interruption into their statuses.
int runOrEndEarly(const std::vector<std::string>& arguments)
{
    try {
        return run(arguments);
    } catch (const record::ScriptError& error) {
        std::fprintf(stderr, "%s: %s\n", PROGRAM, Files::printable(error.what()).c_str());
        return 2;
    } catch (const record::Interruption& interruption) {
        return 128 + interruption.signal;
    }
}

} // namespace

int main(int argc, char* argv[])
{
    secureStandardStreams();
    return commandline::run(PROGRAM, [&] {
        return runOrEndEarly({argv + (argc > 0 ? 1 : 0), argv + argc});
    });
}
