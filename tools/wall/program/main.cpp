#include "HostList.h"
#include "Launch.h"
#include "Show.h"
#include "StandardStreams.h"
#include "WallFiles.h"

#include <cstdio>

namespace {

constexpr const char* PROGRAM = "kelpix-wall";

/// Becomes the launcher of a rank for each tile.
[[noreturn]] void startRanks(const wall::Options& options,
                             const std::vector<std::string>& arguments)
{
    WallFiles files;
    WallLayout layout;
    auto problem = readWallFiles(options.description, files);
    if (!problem) {
        problem = layOut(files, layout);
    }
    if (problem) {
        throw std::runtime_error(problem->text());
    }
    const std::string host = wall::hostName();
    if (options.simulate) {
        for (WallTile& tile : layout.tiles) {
            tile.host = host;
        }
    }
    std::vector<std::string> command = {std::filesystem::read_symlink("/proc/self/exe")};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const std::string hostFile = wall::fileInMemory(hosts::sequence(layout));
    wall::launch(wall::launchCommand(layout, host, hostFile, command));
}

int run(const std::vector<std::string>& arguments)
{
    const wall::Options options = wall::parseOptions(arguments);
    if (options.action != commandline::Action::work) {
        commandline::answer(options.action, PROGRAM, wall::usage());
        return 0;
    }
    if (!wall::isRank()) {
        startRanks(options, arguments);
    }
    return wall::playTile(options);
}

} // namespace

int main(int argc, char* argv[])
{
    secureStandardStreams();
    return commandline::run(PROGRAM, [&] { return run({argv + (argc > 0 ? 1 : 0), argv + argc}); });
}
