#include "Show.h"

#include "Printable.h"
#include "TimeText.h"
#include "VoiceLength.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <poll.h>
#include <sstream>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/signalfd.h>
#include <unistd.h>
#include <utility>

namespace show {

namespace fs = std::filesystem;

namespace {

constexpr Id CHECK = -1;    // among the processes: that which looks at the media
constexpr Seconds REST = 1; // without a change, then the media are at rest
constexpr int LONGEST_CHECK = 120;
constexpr Seconds BEFORE_ANOTHER_CHECK = 10; // when there could be no process
constexpr Seconds BETWEEN_STATUS = 60;
constexpr Seconds OVERLAP = 0.5; // the next showing begins so long before the voice ends
constexpr Seconds SHORTEST_PERIOD = 5;
// In the environment of a showing: which one it is. The launcher does not say again what it has
// said at the first one.
constexpr const char* NUMBER = "KELPIX_SHOWING";

Seconds clockNow()
{
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<Seconds>(time.tv_sec) + static_cast<Seconds>(time.tv_nsec) * 1e-9;
}

void print(const std::string& line)
{
    std::fprintf(stderr, "kelpix-show: %s\n", Files::printable(line).c_str());
}

/// \return a descriptor that tells the signals, which have no other effect from here on
int takeSignals()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGCHLD);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        // A signal that was ignored at the start, as by nohup, stays ignored.
        struct sigaction action = {};
        if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) {
            sigaddset(&set, signal);
        }
    }
    sigprocmask(SIG_BLOCK, &set, nullptr);
    // Nor does it matter to a showing that nobody reads what is said of it.
    std::signal(SIGPIPE, SIG_IGN);
    return signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
}

} // namespace

Show::Show(const Options& options, Programme programme)
    : options(options), programme(std::move(programme)), signals(show::takeSignals()),
      screen(options.look), conductor(*this, {{}, options.patience})
{
    fs::path own = options.statusFile;
    if (!own.empty()) {
        own = fs::absolute(own).lexically_normal();
        statusFile.emplace(own);
    }
    if (!this->programme.media.empty()) {
        watch.emplace(this->programme.media, own);
    }
    conductor.setPeriod(period());
}

Show::~Show()
{
    close(signals);
    if (checkOutput != -1) {
        close(checkOutput);
    }
}

std::optional<Seconds> Show::period() const
{
    if (options.every) {
        return options.every;
    }
    const auto voice = programme.media.empty() ? std::nullopt : voiceLength(programme.media);
    return voice ? std::optional(std::max(SHORTEST_PERIOD, *voice - OVERLAP)) : std::nullopt;
}

void Show::run()
{
    service.notify("READY=1");
    sayWhatIsWatched();
    while (!conductor.isOver()) {
        conductor.pass(clockNow());
        reportStatus(clockNow());
        // Events may have been read while something was asked of the X server.
        pollfd sources[] = {{signals, POLLIN, 0},
                            {screen.descriptor(), POLLIN, 0},
                            {watch ? watch->descriptor() : -1, POLLIN, 0}};
        poll(sources, std::size(sources), screen.hasNews() ? 0 : timeout(clockNow()));
        readScreen();
        takeSignals(clockNow());
        watchMedia(clockNow());
    }
}

void Show::readScreen()
{
    screen.read({
        [&](pid_t process) { return processes.showingOf(process); },
        [&](Id showing) { conductor.frame(showing, clockNow()); },
        [&](Id showing) { conductor.silent(showing, clockNow()); },
        [&](Id showing, bool isVisible) { conductor.visible(showing, isVisible, clockNow()); },
    });
}

int Show::timeout(Seconds now) const
{
    Seconds until = std::min(conductor.due(), statusAt);
    const Seconds media = checkUntil != NEVER ? checkUntil : restAt;
    if (media != NEVER) {
        until = std::min(until, media);
    }
    if (service.watchdog()) {
        until = std::min(until, aliveAt);
    }
    // Rounded up: it is due then.
    return static_cast<int>(std::ceil(std::max(0.0, until - now) * 1000));
}

void Show::takeSignals(Seconds now)
{
    signalfd_siginfo signal{};
    while (read(signals, &signal, sizeof signal) == sizeof signal) {
        if (signal.ssi_signo != SIGCHLD) {
            service.notify("STOPPING=1");
            conductor.stop(now);
            dropCheck();
        }
    }
    processes.reap([&](Id showing, const End& end) { onEnd(showing, end, now); });
}

void Show::onEnd(Id showing, const End& end, Seconds now)
{
    if (showing == CHECK) {
        onCheckEnd(!end.isFault);
    } else {
        conductor.ended(showing, end, now);
    }
}

std::optional<Id> Show::open(std::optional<Id> front)
{
    if (front) {
        screen.hold(*front);
    }
    setenv(NUMBER, std::to_string(++latest).c_str(), 1);
    try {
        processes.start(latest, programme.command);
    } catch (const std::runtime_error& failure) {
        say(failure.what()); // the one in front goes on
        return {};
    }
    return latest;
}

void Show::terminate(Id showing)
{
    processes.signal(showing, SIGTERM);
}

void Show::kill(Id showing)
{
    processes.signal(showing, SIGKILL);
}

void Show::checkMedia()
{
    checkOutput = memfd_create("check", MFD_CLOEXEC);
    isCheckDropped = false;
    try {
        processes.start(CHECK, programme.check, checkOutput);
        checkUntil = clockNow() + LONGEST_CHECK;
    } catch (const std::runtime_error& failure) {
        say(failure.what());
        close(std::exchange(checkOutput, -1));
        restAt = clockNow() + BEFORE_ANOTHER_CHECK;
    }
}

void Show::dropCheck()
{
    isCheckDropped = true;
    processes.signal(CHECK, SIGKILL);
}

void Show::onCheckEnd(bool isGood)
{
    constexpr std::size_t MOST = 65536;
    std::string printed(MOST, '\0');
    const ssize_t size = pread(checkOutput, printed.data(), printed.size(), 0);
    printed.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    close(std::exchange(checkOutput, -1));
    checkUntil = NEVER;
    if (isCheckDropped) {
        return;
    }

    say(isGood ? "the media have changed: the next showing plays them"
               : "the media have changed, but cannot be shown as they are; nothing new is started "
                 "until they are better");
    std::istringstream lines(printed);
    for (std::string line; std::getline(lines, line) && !isGood;) {
        if (!line.starts_with("ok ")) {
            say("  " + line);
        }
    }
    conductor.setPeriod(period());
    conductor.mediaChecked(isGood);
}

void Show::sayWhatIsWatched()
{
    if (watch && !watch->isWhole()) {
        say("the kernel cannot watch all of the media: changes may go unseen (inotify(7) names its "
            "limits)");
    }
}

void Show::watchMedia(Seconds now)
{
    if (!watch) {
        return;
    }
    if (watch->read()) {
        conductor.mediaTouched(now);
        restAt = now + REST;
        dropCheck();
    }
    // One check at a time.
    if (restAt != NEVER && now >= restAt && checkUntil == NEVER) {
        restAt = NEVER;
        watch->renew();
        sayWhatIsWatched();
        conductor.mediaAtRest();
    }
    if (checkUntil != NEVER && now >= checkUntil) {
        say("the check of the media has not ended within " + std::to_string(LONGEST_CHECK) + " s");
        processes.signal(CHECK, SIGKILL);
        checkUntil = now + LONGEST_CHECK;
    }
}

void Show::reportStatus(Seconds now)
{
    if (service.watchdog() && now >= aliveAt) {
        service.notify("WATCHDOG=1");
        aliveAt = now + *service.watchdog() / 2;
    }
    const std::optional<Id> front = conductor.front();
    const std::optional<double> rate =
        front && !conductor.isFrontStill() ? screen.rate(*front) : std::nullopt;
    const bool isNews = conductor.number() != health.showing ||
                        conductor.faults() != health.faults ||
                        rate.has_value() != health.rate.has_value();
    if (!isNews && now < statusAt) {
        return;
    }
    health.time = std::time(nullptr);
    if (conductor.faults() != health.faults) {
        health.faultTime = health.time;
    }
    health.showing = conductor.number();
    health.rate = rate;
    health.memory = front ? processes.memory(*front) : 0;
    health.faults = conductor.faults();
    health.lastFault = conductor.lastFault();
    const std::string line = lineOf(health);
    if (now >= statusAt) {
        print(line);
        statusAt = now + BETWEEN_STATUS;
    }
    service.notify("STATUS=" + line);
    if (statusFile) {
        try {
            statusFile->write(line);
        } catch (const std::runtime_error& failure) {
            say(failure.what()); // the showing goes on
        }
    }
}

void Show::say(const std::string& line)
{
    print(status::text(std::time(nullptr)) + " " + line);
}

} // namespace show
