#include "Check.h"
#include "DanceLength.h"
#include "Delivery.h"
#include "Options.h"
#include "Preview.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <exception>
#include <iterator>
#include <mutex>
#include <thread>

namespace {

using media::Asset;
using media::File;
using media::Options;

constexpr const char* PROGRAM = "kelpix-media";

/// Makes assets, on two threads. The bytes of an asset depend on the request alone, not on the
/// order in which the threads take them.
class Workshop {
public:
    explicit Workshop(const Options& from) : options(from)
    {
        for (const Asset& asset : media::assets()) {
            if (options.only == nullptr || options.only == &asset) {
                jobs.push_back(&asset);
            }
        }
        made.resize(jobs.size());
    }

    /// \return the files of all assets, in the order of the table. Throws what the first failure
    /// throws.
    std::vector<File> run()
    {
        std::thread second([this] { work(); });
        work();
        second.join();
        if (error) {
            std::rethrow_exception(error);
        }
        std::vector<File> files;
        for (std::vector<File>& asset : made) {
            std::move(asset.begin(), asset.end(), std::back_inserter(files));
        }
        return files;
    }

private:
    void work()
    {
        for (std::size_t i = next++; i < jobs.size(); i = next++) {
            try {
                made[i] = jobs[i]->make(options.request);
            } catch (...) {
                const std::lock_guard lock(mutex);
                if (!error) {
                    error = std::current_exception();
                }
                next = jobs.size();
            }
        }
    }

    const Options& options;
    std::vector<const Asset*> jobs;
    std::vector<std::vector<File>> made; ///< of each job; one thread writes an entry
    std::atomic<std::size_t> next{0};
    std::mutex mutex; ///< guards error
    std::exception_ptr error;
};

int run(const std::vector<std::string>& arguments)
{
    Options options = media::parseOptions(arguments);
    if (options.action != commandline::Action::work) {
        commandline::answer(options.action, PROGRAM, media::usage());
        return 0;
    }
    if (!options.check.empty()) {
        const std::vector<media::FileReport> reports = media::checkFolder(options.check);
        std::fputs(media::describe(reports).c_str(), stdout);
        if (!options.preview.empty()) {
            media::makePreview(options.check, options.preview, options.force);
        }
        return media::playsWell(reports) ? 0 : 1;
    }
    options.request.seconds = media::lengthFor(options);
    media::deliver(Workshop(options).run(), options.out, options.force);
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    return commandline::run(PROGRAM, [&] { return run({argv + (argc > 0 ? 1 : 0), argv + argc}); });
}
