#include "Encoder.h"

#include "WriteAll.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace record {

namespace {

constexpr int SOUND_DESCRIPTOR = 3;
constexpr int REPORT_DESCRIPTOR = 4;
constexpr int BETWEEN_CALLS = 100; // milliseconds, while ffmpeg is waited for

bool isOneOf(const std::string& text, std::initializer_list<const char*> texts)
{
    return std::any_of(texts.begin(), texts.end(), [&](const char* each) { return text == each; });
}

void closeIfOpen(int& descriptor)
{
    if (descriptor >= 0) {
        close(std::exchange(descriptor, -1));
    }
}

/// Operations on this end return at once, also when the pipe is full or empty.
void makeNonBlocking(int descriptor)
{
    fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) | O_NONBLOCK);
}

/// A pipe that a child gets one end of.
struct Pipe {
    int read = -1;
    int write = -1;

    Pipe()
    {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) {
            throw std::runtime_error(std::string("no pipe to ffmpeg: ") + std::strerror(errno));
        }
        read = ends[0];
        write = ends[1];
        // A larger pipe means fewer context switches. Where this is refused the default size
        // will do.
        constexpr int LARGEST = 1 << 20;
        fcntl(write, F_SETPIPE_SZ, LARGEST);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe()
    {
        closeIfOpen(read);
        closeIfOpen(write);
    }

    /// \return the writing end, which is the caller's from here on
    int takeWritingEnd() { return std::exchange(write, -1); }

    /// \return the reading end, likewise
    int takeReadingEnd() { return std::exchange(read, -1); }
};

/// Starts a command. Three descriptors of this process become its standard input, its
/// SOUND_DESCRIPTOR and its REPORT_DESCRIPTOR: none of them is a lower one that becomes another
/// before, so the pipes are made in this order.
/// \return the result of posix_spawnp
int spawn(std::vector<std::string> command, int input, int sound, int report, pid_t& process)
{
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& argument : command) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&files, sound, SOUND_DESCRIPTOR);
    posix_spawn_file_actions_adddup2(&files, report, REPORT_DESCRIPTOR);

    // The child gets SIGPIPE's default action back, and a process group of its own: Ctrl-C then
    // reaches this program only.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t usual;
    sigemptyset(&usual);
    sigaddset(&usual, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &usual);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF);

    const int error =
        posix_spawnp(&process, arguments[0], &files, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return error;
}

void feedSound(int descriptor, const Encoder::SoundSource& next)
{
    for (;;) {
        const std::vector<std::int16_t> chunk = next();
        if (chunk.empty() ||
            !writeAll(descriptor, chunk.data(), chunk.size() * sizeof(std::int16_t))) {
            break;
        }
    }
    close(descriptor);
}

} // namespace

std::vector<std::string> encoderCommand(const FilmFormat& format,
                                        const std::filesystem::path& output)
{
    const std::string size = std::to_string(format.width) + "x" + std::to_string(format.height);
    const std::string fps = std::to_string(format.fps);
    const std::string soundRate = std::to_string(format.soundRate);
    const std::string sound = "pipe:" + std::to_string(SOUND_DESCRIPTOR);
    const std::string report = "pipe:" + std::to_string(REPORT_DESCRIPTOR);
    std::vector<std::string> command = {
        "ffmpeg", "-hide_banner", "-nostdin", "-loglevel", "error", "-progress", report,       "-y",
        "-f",     "rawvideo",     "-pix_fmt", "rgb0",      "-s",    size,        "-framerate", fps,
        "-i",     "pipe:0",       "-f",       "s16le",     "-ar",   soundRate,   "-ac",        "2",
        "-i",     sound};
    const auto add = [&](std::initializer_list<const char*> options) {
        command.insert(command.end(), options.begin(), options.end());
    };
    const std::string kind = format.path.extension().string();
    if (isOneOf(kind, {".mp4", ".m4v", ".mov", ".mkv"})) {
        add({"-c:v", "libx264", "-preset", "veryfast", "-crf", "18"});
    }
    if (isOneOf(kind, {".mp4", ".m4v", ".mov", ".mkv", ".webm"})) {
        // The pixel format that every player shows.
        add({"-pix_fmt", "yuv420p"});
    }
    if (isOneOf(kind, {".mp4", ".m4v", ".mov"})) {
        add({"-movflags", "+faststart"});
    }
    command.insert(command.end(), format.encoderOptions.begin(), format.encoderOptions.end());
    // Without this ffmpeg takes a name with a colon for a protocol.
    command.push_back("file:" + output.string());
    return command;
}

Encoder::Encoder(const FilmFormat& format, SoundSource sound) : part(format.path)
{
    Pipe framePipe;
    Pipe soundPipe;
    Pipe reportPipe;
    const int error = spawn(encoderCommand(format, part.name()), framePipe.read, soundPipe.read,
                            reportPipe.write, process);
    if (error != 0) {
        process = -1;
        throw std::runtime_error(error == ENOENT
                                     ? "a film needs ffmpeg: install Debian's package ffmpeg"
                                     : std::string("cannot start ffmpeg: ") + std::strerror(error));
    }
    frames = framePipe.takeWritingEnd();
    reports = reportPipe.takeReadingEnd();
    // Neither waits for the other: ffmpeg does not go on while nobody reads its reports.
    makeNonBlocking(frames);
    makeNonBlocking(reports);
    soundFeed = std::thread(feedSound, soundPipe.takeWritingEnd(), std::move(sound));
}

Encoder::~Encoder()
{
    abandon();
}

bool Encoder::write(const Picture& frame, const std::function<void()>& waiting)
{
    if (process == -1) {
        return false;
    }
    if (hand(frame.pixels, waiting)) {
        return true;
    }
    requireSuccess(waitForEnd(nullptr));
    return false;
}

/// \return false when nobody reads any more
bool Encoder::hand(const std::vector<std::uint8_t>& bytes, const std::function<void()>& waiting)
{
    for (std::size_t at = 0; at < bytes.size();) {
        std::array<pollfd, 2> ends = {{{frames, POLLOUT, 0}, {reports, POLLIN, 0}}};
        const int ready = poll(ends.data(), ends.size(), BETWEEN_CALLS);
        readReports();
        if (ready <= 0 && waiting) {
            waiting();
        }
        const ssize_t count = ::write(frames, &bytes[at], bytes.size() - at);
        if (count > 0) {
            at += static_cast<std::size_t>(count);
        } else if (count < 0 && errno != EINTR && errno != EAGAIN) {
            return false;
        }
    }
    return true;
}

/// Reads the reports that have arrived, and closes their pipe when there will be no more.
void Encoder::readReports()
{
    std::array<char, 4096> bytes{};
    while (reports != -1) {
        const ssize_t count = ::read(reports, bytes.data(), bytes.size());
        if (count > 0) {
            report.read({bytes.data(), static_cast<std::size_t>(count)});
        } else if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
            return;
        } else {
            closeIfOpen(reports);
        }
    }
}

void Encoder::finish(const std::function<void()>& waiting)
{
    if (process != -1) {
        requireSuccess(waitForEnd(waiting));
    }
    std::error_code error;
    if (std::filesystem::file_size(part.name(), error) == 0 || error) {
        part.fail("nothing was written");
    }
    part.keep();
}

void Encoder::abandon()
{
    if (process != -1) {
        // The whole group: processes that ffmpeg has started end with it.
        kill(-process, SIGKILL);
        waitForEnd(nullptr);
    }
    part.discard();
}

int Encoder::waitForEnd(const std::function<void()>& waiting)
{
    closeIfOpen(frames);
    int status = 0;
    pid_t ended = 0;
    while (ended != process) {
        pollfd end{reports, POLLIN, 0};
        poll(&end, 1, BETWEEN_CALLS);
        readReports();
        if (waiting) {
            waiting();
        }
        // Without reports the end is near.
        ended = waitpid(process, &status, reports == -1 ? 0 : WNOHANG);
    }
    closeIfOpen(reports);
    process = -1;
    // Nobody reads the sound any more, so the thread ends.
    soundFeed.join();
    return status;
}

void Encoder::requireSuccess(int status)
{
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) {
        return;
    }
    part.discard();
    const std::string how = WIFEXITED(status) ? "with status " + std::to_string(WEXITSTATUS(status))
                                              : "by signal " + std::to_string(WTERMSIG(status));
    throw std::runtime_error("no film: ffmpeg ended " + how);
}

} // namespace record
