#include "Check.h"
#include "Options.h"
#include "PartFile.h"
#include "Printable.h"

#include <atomic>
#include <cstdio>
#include <mutex>
#include <thread>

namespace {

using media::Asset;
using media::File;
using media::Options;

constexpr const char* PROGRAM = "kelpix-media";

/// Makes assets and writes their files, on two threads. The bytes of an asset depend on the request
/// alone, not on the order in which the threads take them.
class Workshop {
public:
    explicit Workshop(const Options& from) : options(from)
    {
        for (const Asset& asset : media::assets()) {
            if (options.only == nullptr || options.only == &asset) {
                jobs.push_back(&asset);
            }
        }
    }

    /// \return what went wrong first, empty when all files are written
    std::string run()
    {
        std::thread second([this] { work(); });
        work();
        second.join();
        return error;
    }

private:
    void work()
    {
        for (std::size_t i = next++; i < jobs.size(); i = next++) {
            try {
                for (const File& file : jobs[i]->make(options.request)) {
                    Files::writeWhole(options.out / file.name, file.bytes);
                    const std::lock_guard lock(mutex);
                    std::printf("%s: %s\n", file.name.c_str(),
                                Files::printable(file.summary).c_str());
                    std::fflush(stdout);
                }
            } catch (const std::exception& problem) {
                const std::lock_guard lock(mutex);
                if (error.empty()) {
                    error = problem.what();
                }
                next = jobs.size();
            }
        }
    }

    const Options& options;
    std::vector<const Asset*> jobs;
    std::atomic<std::size_t> next{0};
    std::mutex mutex; ///< guards error and the progress lines
    std::string error;
};

int run(const std::vector<std::string>& arguments)
{
    const Options options = media::parseOptions(arguments);
    if (options.action != commandline::Action::work) {
        commandline::answer(options.action, PROGRAM, media::usage());
        return 0;
    }
    if (!options.check.empty()) {
        const std::vector<media::FileReport> reports = media::checkFolder(options.check);
        std::fputs(media::describe(reports).c_str(), stdout);
        return media::playsWell(reports) ? 0 : 1;
    }
    const std::string error = Workshop(options).run();
    if (!error.empty()) {
        std::fprintf(stderr, "%s: %s\n", PROGRAM, Files::printable(error).c_str());
    }
    return error.empty() ? 0 : 1;
}

} // namespace

int main(int argc, char* argv[])
{
    return commandline::run(PROGRAM, [&] { return run({argv + (argc > 0 ? 1 : 0), argv + argc}); });
}
