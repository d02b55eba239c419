#include "Interruption.h"
#include "LiveShow.h"
#include "StandardStreams.h"

namespace {

constexpr const char* PROGRAM = "kelpix-live";

int run(const std::vector<std::string>& arguments)
{
    const live::Options options = live::parseOptions(arguments);
    if (options.action != commandline::Action::work) {
        commandline::answer(options.action, PROGRAM, live::usage());
        return 0;
    }
    try {
        live::playLive(options);
    } catch (const record::Interruption& interruption) {
        return 128 + interruption.signal;
    }
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    secureStandardStreams();
    return commandline::run(PROGRAM, [&] { return run({argv + (argc > 0 ? 1 : 0), argv + argc}); });
}
