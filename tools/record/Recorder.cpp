#include "Recorder.h"

#include "Encoder.h"
#include "ExitGuard.h"
#include "FlashMeter.h"
#include "FrameReader.h"
#include "HeldMessages.h"
#include "Interruption.h"
#include "LiveStream.h"
#include "Mixer.h"
#include "OffscreenContext.h"
#include "Pace.h"
#include "PictureFile.h"
#include "Player.h"
#include "Printable.h"
#include "Progress.h"
#include "Replay.h"
#include "Schedule.h"
#include "Sheet.h"
#include "Stage.h"

#include <algorithm>
#include <cinttypes>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <queue>
#include <stdexcept>
#include <thread>
#include <unistd.h>
#include <utility>

namespace record {

namespace {

using Clock = std::chrono::steady_clock;

/// The scene, and where it is drawn.
class Recorder {
public:
    Recorder(const Options& given, const Script& script)
        : options(given), voice(loadTrack("sound/magpie_vocal.ogg", voiceSamples)),
          context(given.width, given.height), reader(given.width, given.height)
    {
        if (given.replay.empty()) {
            stage.emplace(given.width, given.height, given.seed,
                          Stage::Voice{voiceSamples, voice.rate});
            scene = &player.emplace(*stage, script);
        } else {
            scene = &replay.emplace(given);
        }
    }

    std::string makePicture();
    std::string makeSheet();
    std::string hash();
    std::string makeFilm(const Schedule& schedule);
    Outcome countFlashes(const Schedule& schedule);
    std::string stream(Schedule schedule, int output);
    void sayWhenTheDanceIsOver() const;

private:
    const Options& options;
    std::int64_t voiceSamples = 0;
    Track voice;
    OffscreenContext context;
    std::optional<Stage> stage;
    std::optional<Player> player;
    std::optional<Replay> replay;
    PlayedScene* scene = nullptr; ///< borrows: one of these
    FrameReader reader;
    Clock::time_point begin = Clock::now();

    Progress::Duration elapsed() const { return Clock::now() - begin; }
    void playStep(bool seen);
    void playUntil(std::int64_t last, bool seen);
    void save(const Picture& picture, Files::PartFile& part);
    void film(const Schedule& schedule, Encoder& encoder);

    /// Takes a frame of a film. \return whether another one is wanted
    using Sink = std::function<bool(const Picture&)>;
    void drawFrames(const Schedule& schedule, const Sink& take,
                    const std::function<void(std::int64_t)>& played);
};

void Recorder::playStep(bool seen)
{
    Interruption::check();
    OffscreenContext::drawPixels(seen);
    scene->playStep();
}

/// Plays all steps up to this one. \param seen  whether the last one is looked at
void Recorder::playUntil(std::int64_t last, bool seen)
{
    Progress progress(stderr, isatty(STDERR_FILENO) != 0, last + 1);
    for (std::int64_t step = 0; step <= last; ++step) {
        playStep(seen && step == last);
        progress.show(step + 1, elapsed());
    }
}

/// Of a film or a picture of the time after the voice, which not everybody means who asks for it.
void Recorder::sayWhenTheDanceIsOver() const
{
    if (stage && voiceSamples > 0 && options.at >= voiceSamples * SECOND / voice.rate) {
        std::fprintf(stderr, "kelpix-record: the dance is over by then: the voice lasts %.4g s\n",
                     static_cast<double>(voiceSamples) / voice.rate);
    }
}

void Recorder::save(const Picture& picture, Files::PartFile& part)
{
    try {
        writePng(part.name(), picture);
    } catch (const std::runtime_error& error) {
        part.fail(error.what());
    }
    part.keep();
}

std::string Recorder::makePicture()
{
    Files::PartFile part(options.png);
    const ExitGuard guard([&] { part.discard(); });
    playUntil(stepShownAt(options.at), true);
    reader.start();
    save(reader.finish(), part);
    return Files::printable(options.png.filename().string()) + ": " +
           std::to_string(options.width) + " x " + std::to_string(options.height);
}

std::string Recorder::makeSheet()
{
    Files::PartFile part(options.sheet);
    const ExitGuard guard([&] { part.discard(); });
    const Sheet sheet(voiceSamples * SECOND / voice.rate);
    const std::int64_t last = sheet.steps().back();
    Picture picture = Sheet::empty(options.width, options.height);
    Progress progress(stderr, isatty(STDERR_FILENO) != 0, last + 1);
    for (std::int64_t step = 0; step <= last; ++step) {
        const bool seen = sheet.shows(step);
        playStep(seen);
        if (seen) {
            reader.start();
            sheet.place(reader.finish(), step, picture);
        }
        progress.show(step + 1, elapsed());
    }
    save(picture, part);
    return Files::printable(options.sheet.filename().string()) + ": " + sheet.about();
}

std::string Recorder::hash()
{
    const std::int64_t last = stepShownAt(options.at);
    playUntil(last, false);
    const StateHash hash = scene->hash();
    std::string text = "frame " + std::to_string(last + 1);
    const auto add = [&text](const char* name, std::uint64_t value) {
        char line[64];
        std::snprintf(line, sizeof line, "\n%-8s %016" PRIx64, name, value);
        text += line;
    };
    for (const StateHash::Part& part : hash.parts()) {
        add(part.name, part.value);
    }
    add("whole", hash.whole());
    return text;
}

/// The sound of a film, in pieces.
Encoder::SoundSource soundFor(const Schedule& schedule, const Options& options, Mixer mixer)
{
    const std::int64_t rate = mixer.rate();
    const std::int64_t length = schedule.frames() * rate / options.fps;
    // Whole seconds separately: the product of hours and a high rate would overflow.
    const std::int64_t start = options.at / SECOND * rate + options.at % SECOND * rate / SECOND;
    constexpr std::int64_t PIECE = 4096;
    return [=, at = start, mixer = std::move(mixer)]() mutable {
        const std::int64_t from = at;
        at = std::min(from + PIECE, start + length);
        return mixer.mix(from, at - from);
    };
}

std::string Recorder::makeFilm(const Schedule& schedule)
{
    std::int64_t unused = 0;
    Mixer mixer(voice, loadTrack("sound/bubbles_sound.ogg", unused));
    const FilmFormat format{options.out, options.width, options.height,
                            options.fps, voice.rate,    options.encoderOptions};
    Encoder encoder(format, soundFor(schedule, options, std::move(mixer)));
    const ExitGuard guard([&] { encoder.abandon(); });
    film(schedule, encoder);

    const double seconds = static_cast<double>(schedule.frames()) / options.fps;
    char text[100];
    std::snprintf(text, sizeof text, ": %.4g s of %d x %d, made in %.4g s", seconds, options.width,
                  options.height, elapsed().count());
    return Files::printable(options.out.filename().string()) + text;
}

/// Draws the frames of a film, and hands them over in their order.
/// \param played  called after each step of the scene, with the number of steps so far
void Recorder::drawFrames(const Schedule& schedule, const Sink& take,
                          const std::function<void(std::int64_t)>& played)
{
    std::queue<std::int64_t> repeats; // how often each frame under way is shown
    bool wanted = true;
    const auto deliver = [&] {
        const Picture& picture = reader.finish();
        for (; wanted && repeats.front() > 0; --repeats.front()) {
            wanted = take(picture);
        }
        repeats.pop();
    };
    const std::int64_t last = schedule.stepOf(schedule.frames() - 1);
    for (std::int64_t step = 0; step <= last && wanted; ++step) {
        const std::int64_t shown = schedule.framesOf(step);
        playStep(shown > 0);
        if (shown > 0) {
            reader.start();
            repeats.push(shown);
        }
        if (reader.underWay() == 2) {
            deliver();
        }
        played(step + 1);
    }
    while (wanted && reader.underWay() > 0) {
        deliver();
    }
}

/// Makes the whole film.
void Recorder::film(const Schedule& schedule, Encoder& encoder)
{
    const std::int64_t first = schedule.stepOf(0);
    const std::int64_t last = schedule.stepOf(schedule.frames() - 1);
    Progress progress(stderr, isatty(STDERR_FILENO) != 0, last + 1);
    // Done is what the encoder has taken, and the way to the first frame.
    const auto showProgress = [&](std::int64_t played) {
        const std::int64_t taken = std::min(encoder.taken(), schedule.frames());
        const std::int64_t done =
            taken > 0 ? schedule.stepOf(taken - 1) + 1 : std::min(played, first);
        progress.show(std::min(done, last), elapsed());
    };
    drawFrames(
        schedule,
        [&](const Picture& picture) { return encoder.write(picture, Interruption::check); },
        showProgress);
    encoder.finish([&] {
        Interruption::check();
        showProgress(last + 1);
    });
    progress.show(last + 1, elapsed());
}

Outcome Recorder::countFlashes(const Schedule& schedule)
{
    FlashMeter meter(options.width, options.height, options.fps);
    Progress progress(stderr, isatty(STDERR_FILENO) != 0,
                      schedule.stepOf(schedule.frames() - 1) + 1);
    drawFrames(
        schedule,
        [&](const Picture& picture) {
            meter.add(picture);
            return true;
        },
        [&](std::int64_t played) { progress.show(played, elapsed()); });
    const FlashMeter::Result result = meter.finish();
    const double begin = static_cast<double>(options.at) / SECOND;
    const double length = static_cast<double>(schedule.frames()) / options.fps;
    char text[100];
    std::snprintf(text, sizeof text, "from %g s to %g s\n", begin, begin + length);
    return {text + result.text(), result.isMet()};
}

/// Plays in real time.
/// \param output  borrows; the descriptor to write to
std::string Recorder::stream(Schedule schedule, int output)
{
    if (options.untilVoiceEnds) {
        schedule.endBefore(stepAfter(voiceSamples * SECOND / voice.rate));
    }
    if (schedule.frames() == 0) {
        throw std::runtime_error("the voice has ended by then; --seconds says how long to go on");
    }
    LiveStream live(output, options.live, options.width, options.height, options.fps);
    Pace pace(options.fps);
    std::int64_t frames = 0;
    bool read = true;
    bool told = false;
    drawFrames(
        schedule,
        [&](const Picture& picture) {
            std::this_thread::sleep_for(pace.waitAt(Pace::Clock::now()));
            if (pace.lost() > Pace::Duration::zero() && !std::exchange(told, true)) {
                std::fputs("kelpix-record: the stream is slower than real time: this machine or "
                           "its reader is too slow\n",
                           stderr);
            }
            read = live.write(picture);
            frames += read ? 1 : 0;
            return read;
        },
        [](std::int64_t) {});
    if (!read) {
        throw Interruption{SIGPIPE};
    }
    char text[100];
    std::snprintf(text, sizeof text, "%" PRId64 " frames of %d x %d, %.4g s late", frames,
                  options.width, options.height,
                  std::chrono::duration<double>(pace.lost()).count());
    return text;
}

/// Standard output as it is before the scene's messages are held back. Throws
/// commandline::UsageError when that is a terminal.
int standardOutput()
{
    if (isatty(STDOUT_FILENO) != 0) {
        throw commandline::UsageError(
            "--live writes to standard output: lead that to a program or a file");
    }
    return fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
}

/// Throws std::runtime_error when film or picture would replace a file. What a folder or a missing
/// one means is said when the file is made.
void keepFiles(const Options& options)
{
    for (const std::filesystem::path& path : {options.out, options.png, options.sheet}) {
        std::error_code error;
        if (!options.force && exists(std::filesystem::symlink_status(path, error)) &&
            !std::filesystem::is_directory(path, error)) {
            throw std::runtime_error(path.string() + " is there already; --force replaces it");
        }
    }
}

/// The frames of the film, or the one of the picture or the hash, up to where the script or the log
/// ends the scene.
Schedule scheduleFor(const Options& options, const Script& script)
{
    Schedule schedule(options.at, options.isFilm() ? options.seconds : 1, options.fps);
    if (!options.replay.empty()) {
        const auto length = Replay::length(options.replay);
        schedule.endBefore(length);
        if (schedule.frames() == 0) {
            throw std::runtime_error("the show ends before the time of --at: it has " +
                                     std::to_string(length) + " frames");
        }
    }
    if (script.endStep) {
        schedule.endBefore(*script.endStep);
    }
    if (schedule.frames() == 0) {
        throw ScriptError("the script ends the scene before the time of --at");
    }
    return schedule;
}

} // namespace

Outcome runRecorder(const Options& given, const Script& script)
{
    Options options = given;
    if (!options.replay.empty()) {
        Replay::chooseSize(options);
    }
    const Schedule schedule = scheduleFor(options, script);
    keepFiles(options);
    const int output = options.live != LiveFormat::none ? standardOutput() : -1;
    const HeldMessages messages;
    const ExitGuard guard([&] { messages.show(); });
    Recorder recorder(options, script);
    if (options.hash) {
        return {recorder.hash(), true};
    }
    if (options.live != LiveFormat::none) {
        return {recorder.stream(schedule, output), true};
    }
    if (options.flashes) {
        return recorder.countFlashes(schedule);
    }
    if (!options.sheet.empty()) {
        return {recorder.makeSheet(), true};
    }
    recorder.sayWhenTheDanceIsOver();
    return {options.out.empty() ? recorder.makePicture() : recorder.makeFilm(schedule), true};
}

} // namespace record
