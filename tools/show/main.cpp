#include "MediaToPlay.h"
#include "Options.h"
#include "Show.h"

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr const char* PROGRAM = "kelpix-show";

/// \return a program that was installed together with this one; its name alone, for the search, if
///         it was not
std::string programBeside(const char* name)
{
    std::error_code error;
    const fs::path path = fs::read_symlink("/proc/self/exe", error).replace_filename(name);
    return fs::exists(path, error) ? path.string() : name;
}

show::Programme programmeOf(const show::Options& options)
{
    show::Programme programme;
    programme.command = options.command;
    if (options.command.empty() || !options.media.empty()) {
        programme.media =
            fs::absolute(mediaToPlay(options.media, KELPIX_MEDIA_FROM_PROGRAM)).lexically_normal();
        if (!fs::exists(programme.media / "data/mocap.txt")) {
            throw std::runtime_error("no media in " + programme.media.string() +
                                     ": there is no data/mocap.txt; \"kelpix-media --out DIR\" "
                                     "makes some, --media DIR plays them");
        }
        programme.check = {programBeside("kelpix-media"), "--check", programme.media.string()};
    }
    if (options.command.empty()) {
        programme.command = {programBeside("kelpix"), "--media", programme.media.string()};
    }
    return programme;
}

} // namespace

int main(int argc, char* argv[])
{
    return commandline::run(PROGRAM, [&] {
        const show::Options options = show::parseOptions({argv + 1, argv + argc});
        if (options.action != commandline::Action::work) {
            commandline::answer(options.action, PROGRAM, show::usage());
            return 0;
        }
        show::Show(options, programmeOf(options)).run();
        return 0;
    });
}
