#include "OscInput.h"

#include "Answer.h"
#include "Bucket.h"
#include "Inbox.h"
#include "Socket.h"

#include <array>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <mutex>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace osc {

namespace {

// A packet counts as its bytes and these.
constexpr double PACKET_COST = 32;
constexpr double READ_A_SECOND = 2048000;
constexpr double READ_AT_ONCE = 65536;
/// After a flood has emptied the bucket, the thread sleeps until there is as much again: a
/// millisecond.
constexpr double WORTH_WAKING = 2048;

constexpr double ANSWERS_A_SECOND = 20;
constexpr double ANSWERS_AT_ONCE = 20;

std::chrono::nanoseconds steadyNow()
{
    return std::chrono::steady_clock::now().time_since_epoch();
}

/// Wakes the thread for its end.
class Alarm {
public:
    Alarm() : file(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    {
        if (file == -1) {
            throw std::system_error(errno, std::generic_category(), "OSC: eventfd");
        }
    }
    Alarm(const Alarm&) = delete;
    Alarm& operator=(const Alarm&) = delete;
    ~Alarm() { close(file); }

    void ring() const { eventfd_write(file, 1); }
    int descriptor() const { return file; }

private:
    int file;
};

/// A thread that is started while this lives has all signals blocked, as threads inherit that.
class BlockedSignals {
public:
    BlockedSignals()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
    }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;
    ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }

private:
    sigset_t before;
};

} // namespace

class OscInput::Listener {
public:
    Listener(const std::string& address, std::uint16_t port)
        : socket(address, port), buffer(LONGEST_PACKET)
    {
        const BlockedSignals blocked;
        thread = std::thread([this] { run(); });
    }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    ~Listener()
    {
        alarm.ring();
        thread.join();
    }

    const Socket socket;

    mutable std::mutex mutex; ///< for these
    Inbox inbox;
    std::string status;
    std::uint64_t unanswered = 0;

private:
    void run();
    bool awaitPackets();
    bool isOver(int milliseconds) const;
    void receive(Bytes packet, const Sender& from);
    void answer(Request::Kind question, const Sender& to);

    // Of the thread.
    std::vector<unsigned char> buffer;
    Reader reader;
    Bucket reading{READ_A_SECOND, READ_AT_ONCE};
    Bucket answers{ANSWERS_A_SECOND, ANSWERS_AT_ONCE};

    Alarm alarm;
    std::thread thread;
};

void OscInput::Listener::run()
{
    pthread_setname_np(pthread_self(), "kelpix-osc");
    while (awaitPackets()) {
        while (reading.fill(steadyNow()) > 0) {
            Sender from = {};
            const ssize_t size = socket.receive(buffer.data(), from);
            if (size < 0) {
                if (errno != EAGAIN && errno != EINTR) {
                    reading.spend(READ_AT_ONCE); // comes back; not at once
                }
                break;
            }
            reading.spend(PACKET_COST + static_cast<double>(size));
            receive(Bytes(buffer).first(static_cast<std::size_t>(size)), from);
        }
    }
}

/// \return false: it is over
bool OscInput::Listener::awaitPackets()
{
    if (reading.fill(steadyNow()) <= 0) {
        const std::chrono::duration<double, std::milli> pause = reading.until(WORTH_WAKING);
        if (isOver(static_cast<int>(std::ceil(pause.count())))) {
            return false;
        }
    }
    std::array<pollfd, 2> files = {
        {{socket.descriptor(), POLLIN, 0}, {alarm.descriptor(), POLLIN, 0}}};
    poll(files.data(), files.size(), -1);
    return files[1].revents == 0;
}

/// Waits so long for the end.
bool OscInput::Listener::isOver(int milliseconds) const
{
    pollfd end = {alarm.descriptor(), POLLIN, 0};
    return poll(&end, 1, milliseconds) > 0;
}

void OscInput::Listener::receive(Bytes packet, const Sender& from)
{
    const Reading& read = reader.read(packet);
    {
        const std::lock_guard lock(mutex);
        inbox.add(read, {timeTagOf(std::chrono::system_clock::now()), steadyNow()});
    }
    for (const Request::Kind question : read.questions) {
        answer(question, from);
    }
}

void OscInput::Listener::answer(Request::Kind question, const Sender& to)
{
    const bool mayAnswer = answers.fill(steadyNow()) >= 1;
    std::string line;
    {
        const std::lock_guard lock(mutex);
        if (!mayAnswer) {
            ++unanswered;
            return;
        }
        line = status;
    }
    answers.spend(1);
    socket.send(answerTo(question, line), to);
}

OscInput::OscInput(const std::string& address, std::uint16_t port)
    : listener(std::make_unique<Listener>(address, port))
{
}

OscInput::~OscInput() = default;

std::uint16_t OscInput::port() const
{
    return listener->socket.port();
}

std::vector<Command> OscInput::take()
{
    const std::lock_guard lock(listener->mutex);
    return listener->inbox.take(steadyNow());
}

void OscInput::setStatus(std::string line)
{
    const std::lock_guard lock(listener->mutex);
    listener->status = std::move(line);
}

Counts OscInput::counts() const
{
    const std::lock_guard lock(listener->mutex);
    Counts counts = listener->inbox.counts();
    counts.unanswered = listener->unanswered;
    return counts;
}

} // namespace osc
