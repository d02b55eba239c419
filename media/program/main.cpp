#include "Check.h"
#include "Options.h"
#include "OutputFile.h"

#include <atomic>
#include <cstdio>
#include <mutex>
#include <thread>

namespace {

using media::Asset;
using media::File;
using media::Options;

/// Makes assets and writes their files, two at a time. An asset depends on the request alone, so
/// the files come out the same in whatever order the threads get to them.
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
                    media::writeFile(options.out / file.name, file.bytes);
                    const std::lock_guard lock(mutex);
                    std::printf("%s: %s\n", file.name.c_str(), file.summary.c_str());
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

} // namespace

int main(int argc, char* argv[])
{
    try {
        const Options options = media::parseOptions({argv + 1, argv + argc});
        if (options.help) {
            std::fputs(media::usage().c_str(), stdout);
            return 0;
        }
        if (options.version) {
            std::puts("kelpix-media " KELPIX_VERSION);
            return 0;
        }
        if (!options.check.empty()) {
            const std::vector<media::FileReport> reports = media::checkFolder(options.check);
            std::fputs(media::describe(reports).c_str(), stdout);
            return media::playsWell(reports) ? 0 : 1;
        }
        const std::string error = Workshop(options).run();
        if (!error.empty()) {
            std::fprintf(stderr, "kelpix-media: %s\n", error.c_str());
            return 1;
        }
    } catch (const media::UsageError& error) {
        std::fprintf(stderr, "kelpix-media: %s\nkelpix-media --help lists the options.\n",
                     error.what());
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kelpix-media: %s\n", error.what());
        return 1;
    }
    return 0;
}
