#include "Interruption.h"
#include "MediaFolder.h"
#include "MediaToPlay.h"
#include "Recorder.h"
#include "StandardStreams.h"

#include <cstdio>
#include <new>

namespace {

namespace fs = std::filesystem;
using record::Options;

/// Goes to the media; relative names of the options become absolute before.
void enterMedia(Options& options)
{
    const fs::path folder = mediaToPlay(options.media, KELPIX_MEDIA_FROM_PROGRAM);
    for (fs::path* path : {&options.out, &options.png}) {
        if (!path->empty()) {
            *path = fs::absolute(*path);
        }
    }
    std::error_code error;
    fs::current_path(folder, error);
    if (error) {
        throw std::runtime_error("no media in " + folder.string() + ": " + error.message() +
                                 "\n\"kelpix-media --out DIR\" makes some, --media DIR plays them");
    }
    const std::vector<std::string> missing = MediaFolder::missingFiles();
    if (!missing.empty()) {
        std::string names;
        for (const std::string& name : missing) {
            names += " " + name;
        }
        std::fprintf(stderr, "kelpix-record: missing in %s:%s\n", folder.c_str(), names.c_str());
    }
}

int run(const std::vector<std::string>& arguments)
{
    Options options = record::parseOptions(arguments);
    if (options.help) {
        std::fputs(record::usage(), stdout);
        return 0;
    }
    if (options.version) {
        std::puts("kelpix-record " KELPIX_VERSION);
        return 0;
    }
    record::Script script;
    if (!options.script.empty()) {
        script = record::Script::read(options.script);
    }
    enterMedia(options);
    record::Interruption::watch();
    std::puts(record::runRecorder(options, script).c_str());
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    secureStandardStreams();
    try {
        return run({argv + (argc > 0 ? 1 : 0), argv + argc});
    } catch (const record::UsageError& error) {
        std::fprintf(stderr, "kelpix-record: %s\n", error.what());
        return 2;
    } catch (const record::Interruption& interruption) {
        return 128 + interruption.signal;
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "kelpix-record: not enough memory\n");
        return 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kelpix-record: %s\n", error.what());
        return 1;
    }
}
