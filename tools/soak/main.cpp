#include "Goals.h"
#include "HeldMessages.h"
#include "MediaFolder.h"
#include "MediaToPlay.h"
#include "NullGL.h"
#include "OggSound.h"
#include "Options.h"
#include "Stage.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>

namespace {

constexpr const char* PROGRAM = "kelpix-soak";
constexpr int SIZE = 740; // pixels, the program's window
constexpr std::int64_t STEPS_PER_MINUTE = 60 * Stage::STEPS_PER_SECOND;

/// Whether all was played: the scene's readers can end the process.
bool finished = false;

/// What the scene says while it loads. It names files as the media do, so it is captured first.
std::optional<HeldMessages> messages;

/// Prints what was captured, with its control characters escaped.
void printMessages()
{
    if (messages) {
        const std::string said = messages->text();
        messages.reset();
        std::fputs(said.c_str(), stdout);
    }
}

void checkFinished()
{
    if (!finished) {
        printMessages();
        std::fflush(stdout);
        std::fprintf(stderr, "%s: the scene has ended early\n", PROGRAM);
        std::_Exit(1);
    }
}

/// Enters the folder that is played.
void enterMedia(const soak::Options& options)
{
    const std::filesystem::path folder = mediaToPlay(options.media, KELPIX_MEDIA_FROM_PROGRAM);
    if (!options.media.empty() && !std::filesystem::is_directory(folder)) {
        throw commandline::UsageError("there is no folder \"" + folder.string() + "\"");
    }
    if (!std::filesystem::exists(folder / "data/mocap.txt")) {
        throw std::runtime_error("no media in " + folder.string() +
                                 ": there is no data/mocap.txt; \"kelpix-media --out DIR\" makes "
                                 "some, --media DIR plays them");
    }
    std::filesystem::current_path(folder);
}

/// The voice of the media, or one of another length.
Stage::Voice voiceOf(const soak::Options& options)
{
    if (options.voiceSeconds) {
        constexpr int RATE = 44100;
        return {static_cast<std::int64_t>(*options.voiceSeconds * RATE), RATE};
    }
    OggSound sound;
    std::vector<char> track;
    int format = 0;
    unsigned rate = 0;
    sound.loadOGG("sound/magpie_vocal.ogg", track, format, rate);
    return {sound.numSamples, static_cast<int>(rate)};
}

/// \param steps  that were played
soak::Sample sampleOf(const Stage& stage, std::int64_t steps)
{
    soak::Sample sample = soak::countNodes(stage.water);
    sample.hours = static_cast<double>(steps) / (60 * STEPS_PER_MINUTE);
    sample.lists = nullgl::lists();
    sample.textures = nullgl::textures();
    sample.heap = soak::heapInUse();
    return sample;
}

void print(const soak::Sample& sample)
{
    std::printf("%8.2f %6zu %8zu %8zu %9zu %7zu %10zu\n", sample.hours, sample.fish, sample.bubbles,
                sample.lists, sample.textures, sample.slots, sample.heap / 1024);
    std::fflush(stdout);
}

/// Plays one scene. \return the samples that were printed, and those with other display lists than
/// they should have
std::vector<soak::Sample> play(Stage& stage, const soak::Options& options)
{
    const auto steps = static_cast<std::int64_t>(options.hours * 60 * STEPS_PER_MINUTE);
    const std::int64_t every = options.every * STEPS_PER_MINUTE;
    const auto settled = static_cast<std::int64_t>(
        std::ceil(soak::settledAt(options.hours) * 60 * static_cast<double>(STEPS_PER_MINUTE)));
    std::vector<soak::Sample> samples;
    samples.reserve(static_cast<std::size_t>(steps / every) +
                    8); // its growth must not count as the scene's
    stage.draw();
    for (std::int64_t step = 1; step <= steps; ++step) {
        stage.update();
        stage.draw();
        // Textures and display lists are made within the first second.
        const bool first = step == Stage::STEPS_PER_SECOND;
        if (first) {
            std::printf("    hour   fish  bubbles    lists  textures   slots   heap KiB\n");
        }
        const bool judged = step == settled || step == steps;
        if (first || step % STEPS_PER_MINUTE == 0 || judged) {
            const soak::Sample sample = sampleOf(stage, step);
            const bool shown = first || step % every == 0 || judged;
            if (shown) {
                print(sample);
            }
            const bool wrong = sample.lists != sample.listsOfNodes;
            if (shown || (wrong && samples.size() < samples.capacity())) {
                samples.push_back(sample);
            }
        }
    }
    return samples;
}

/// Plays the scene of one seed and prints how it went. \return whether all goals are met
bool playAndJudge(const soak::Options& options, Stage::Voice voice, unsigned seed)
{
    const auto start = std::chrono::steady_clock::now();
    nullgl::reset();
    std::printf("\nseed %u, voice %.1f s\n", seed, static_cast<double>(voice.samples) / voice.rate);
    messages.emplace();
    const auto stage = std::make_unique<Stage>(SIZE, SIZE, seed, voice);
    printMessages();
    const std::vector<soak::Sample> samples = play(*stage, options);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    std::printf("played in %.1f s\n", taken.count());

    bool all = true;
    for (const soak::Goal& goal : soak::judge(samples)) {
        std::printf("%s: %s\n", goal.met ? "met" : "missed", goal.text.c_str());
        all = all && goal.met;
    }
    return all;
}

int run(const std::vector<std::string>& arguments)
{
    const soak::Options options = soak::parseOptions(arguments);
    if (options.action != commandline::Action::work) {
        commandline::answer(options.action, PROGRAM, soak::usage());
        return 0;
    }
    enterMedia(options);
    MediaFolder::reportMissingFiles();
    std::atexit(checkFinished);
    const Stage::Voice voice = voiceOf(options);
    bool all = true;
    for (const unsigned seed : options.seeds) {
        all = playAndJudge(options, voice, seed) && all;
    }
    finished = true;
    return all ? 0 : 1;
}

} // namespace

int main(int argc, char* argv[])
{
    return commandline::run(PROGRAM, [&] { return run({argv + (argc > 0 ? 1 : 0), argv + argc}); });
}
