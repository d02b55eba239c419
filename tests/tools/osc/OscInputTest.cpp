#include "OscInput.h"

#include "Bucket.h"
#include "ErrorOf.h"
#include "PacketBytes.h"
#include "PeakOfMemory.h"
#include "Program.h"
#include "TimeTag.h"

#include <arpa/inet.h>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <optional>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;
using osc::Command;
using osc::OscInput;
using testing::HasSubstr;
using testing::SizeIs;
using Clock = std::chrono::steady_clock;

constexpr auto PATIENCE = 60s; // of a busy machine

/// Asks until the answer is yes. \return false when it is no for too long
template<typename Question>
bool waitFor(Question question)
{
    const auto end = Clock::now() + PATIENCE;
    while (!question()) {
        if (Clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(1ms);
    }
    return true;
}

/// The next commands; none when it takes too long.
std::vector<Command> next(OscInput& input)
{
    std::vector<Command> commands;
    waitFor([&] {
        commands = input.take();
        return !commands.empty();
    });
    return commands;
}

/// A UDP socket that sends to an input of this machine.
class Sender {
public:
    /// \param family  AF_INET or AF_INET6
    explicit Sender(const OscInput& input, int family = AF_INET)
        : file(socket(family, SOCK_DGRAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in to = {};
        to.sin_family = AF_INET;
        to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        to.sin_port = htons(input.port());
        sockaddr_in6 to6 = {};
        to6.sin6_family = AF_INET6;
        to6.sin6_addr = in6addr_loopback;
        to6.sin6_port = to.sin_port;
        const bool is6 = family == AF_INET6;
        const void* address = is6 ? static_cast<const void*>(&to6) : &to;
        EXPECT_EQ(
            connect(file, static_cast<const sockaddr*>(address), is6 ? sizeof to6 : sizeof to), 0);
    }
    Sender(const Sender&) = delete;
    Sender& operator=(const Sender&) = delete;
    ~Sender() { close(file); }

    void send(std::string_view packet) const
    {
        EXPECT_EQ(::send(file, packet.data(), packet.size(), 0),
                  static_cast<ssize_t>(packet.size()));
    }

    /// \return a packet that has arrived here, or nothing
    std::string answer() const
    {
        std::string packet(1000, '\0');
        const ssize_t size = recv(file, packet.data(), packet.size(), MSG_DONTWAIT);
        packet.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
        return packet;
    }

    /// \return the next packet that arrives here; nothing when it takes too long
    std::string nextAnswer() const
    {
        std::string packet;
        waitFor([&] {
            packet = answer();
            return !packet.empty();
        });
        return packet;
    }

private:
    int file;
};

constexpr auto PING = "/ping\0\0\0,\0\0\0"sv;
constexpr auto PLACE = "/figure/1\0\0\0,ff\0\x3e\x80\0\0\x3f\x40\0\0"sv;    // 0.25, 0.75
constexpr auto LAST_PLACE = "/figure/1\0\0\0,ff\0\x3f\0\0\0\x3f\x80\0\0"sv; // 0.5, 1

/// The signals that the receiving thread has blocked, a bit each.
std::uint64_t blockedSignals()
{
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream status(task.path() / "status");
        std::string word;
        status >> word >> word;
        if (word == "kelpix-osc") {
            while (status >> word) {
                if (word == "SigBlk:" && status >> word) {
                    return std::stoull(word, nullptr, 16);
                }
            }
        }
    }
    return 0;
}

} // namespace

TEST(OscInputTest, ReceivesWhatOscsendSends)
{
    OscInput input("127.0.0.1", 0);
    const auto oscsend = [port = std::to_string(input.port())](std::vector<std::string> message) {
        message.insert(message.begin(), {"oscsend", "127.0.0.1", port});
        printedBy(message);
    };
    oscsend({"/figure/2", "ff", "0.25", "0.75"});
    std::vector<Command> commands = next(input);
    ASSERT_THAT(commands, SizeIs(1));
    EXPECT_EQ(commands[0].kind, Command::Kind::FIGURE);
    EXPECT_EQ(commands[0].figure, 1);
    EXPECT_EQ(commands[0].x, 0.25F);
    EXPECT_EQ(commands[0].y, 0.75F);

    oscsend({"/figure/3/release"});
    commands = next(input);
    ASSERT_THAT(commands, SizeIs(1));
    EXPECT_EQ(commands[0].kind, Command::Kind::RELEASE);
    EXPECT_EQ(commands[0].figure, 2);

    oscsend({"/figure/4", "ff", "0.25", "0.75"});
    oscsend({"/figure/1", "fs", "0.25", "left"});
    oscsend({"/seed", "i", "7"});
    commands = next(input);
    ASSERT_THAT(commands, SizeIs(1));
    EXPECT_EQ(commands[0].kind, Command::Kind::SEED);
    EXPECT_EQ(commands[0].seed, 7U);
    EXPECT_EQ(input.counts().unknown, 1U);
    EXPECT_EQ(input.counts().refused, 1U);
    EXPECT_EQ(input.counts().messages, 5U);
}

TEST(OscInputTest, TakesTheCommandsOfTheGuide)
{
    OscInput input("127.0.0.1", 0);
    std::ifstream guide(KELPIX_GUIDE);
    const std::string usual = " 9000 ";
    std::string commands;
    for (std::string line; std::getline(guide, line);) {
        if (line.starts_with("oscsend ")) {
            ASSERT_NE(line.find(usual), std::string::npos) << line;
            commands += line.replace(line.find(usual), usual.size(),
                                     " " + std::to_string(input.port()) + " ") +
                        "\n";
        }
    }
    printedBy({"sh", "-ec", commands});
    ASSERT_TRUE(waitFor([&] { return input.counts().messages == 8; }));
    EXPECT_EQ(input.counts().dropped, 0U);
}

TEST(OscInputTest, ABundleComesAtItsTimeAndNotBefore)
{
    OscInput input("127.0.0.1", 0);
    const Sender sender(input);
    const auto due = std::chrono::system_clock::now() + 300ms;
    sender.send(bundle(osc::timeTagOf(due), {PLACE}));
    ASSERT_TRUE(waitFor([&] { return input.counts().packets == 1; }));
    ASSERT_THAT(next(input), SizeIs(1));
    EXPECT_GE(std::chrono::system_clock::now() + 1us, due);
}

TEST(OscInputTest, AnswersGoToWhoeverAsked)
{
    OscInput input("localhost", 0);
    const Sender sender(input);
    const Sender other(input);
    sender.send(PING);
    EXPECT_EQ(sender.nextAnswer(), "/pong\0\0\0,\0\0\0"sv);
    input.setStatus("up\n" + std::string(1000, '.'));
    sender.send("/status\0,\0\0\0"sv);
    EXPECT_EQ(sender.nextAnswer(),
              std::string("/status\0,s\0\0up\n"sv) + std::string(397, '.') + std::string(4, '\0'));
    EXPECT_EQ(other.answer(), "");
}

TEST(OscInputTest, QuestionsBeyondTheRateAreNotAnswered)
{
    OscInput input("127.0.0.1", 0);
    const Sender sender(input);
    const auto start = Clock::now();
    for (int i = 0; i < 100; ++i) {
        sender.send(PING);
    }
    ASSERT_TRUE(waitFor([&] { return input.counts().packets == 100; }));
    std::uint64_t answers = 0;
    ASSERT_TRUE(waitFor([&] {
        answers += sender.answer().empty() ? 0 : 1;
        return answers + input.counts().unanswered == 100;
    }));
    const std::chrono::duration<double> seconds = Clock::now() - start;
    EXPECT_GE(answers, 20U);
    EXPECT_LE(static_cast<double>(answers), 20 + 20 * seconds.count());
}

TEST(OscInputTest, AFloodLeavesTheNewestPlaceAndNothingElse)
{
    OscInput input("127.0.0.1", 0);
    const Sender sender(input);
    const auto flood = [&] {
        for (int i = 0; i < 20000; ++i) {
            sender.send(PLACE);
            sender.send("junk"sv);
        }
        EXPECT_LE(input.take().size(), 1U);
    };
    flood();
    [[maybe_unused]] const long before = peakOfMemory();
    flood();
#ifndef KELPIX_SANITIZED // they keep what is freed
    EXPECT_LE(peakOfMemory() - before, 256);
#endif
    EXPECT_GT(input.counts().malformed, 0U);

    // The kernel has thrown away what was not read.
    std::vector<Command> commands;
    ASSERT_TRUE(waitFor([&] {
        sender.send(LAST_PLACE);
        commands = input.take();
        return commands.size() == 1 && commands[0].x == 0.5F;
    }));
    EXPECT_EQ(commands[0].y, 1.0F);
}

TEST(OscInputTest, ItsThreadGetsNoSignals)
{
    const OscInput input("127.0.0.1", 0);
    std::uint64_t blocked = 0;
    ASSERT_TRUE(waitFor([&] { return (blocked = blockedSignals()) != 0; }));
    // All of 1 to 31 but SIGKILL and SIGSTOP, which cannot be.
    EXPECT_EQ(blocked & 0x7FFFFFFF, 0x7FFBFEFFU);
    sigset_t own;
    pthread_sigmask(SIG_BLOCK, nullptr, &own);
    EXPECT_FALSE(sigismember(&own, SIGTERM));
}

TEST(OscInputTest, SaysWhyItCannotListen)
{
    const OscInput first("127.0.0.1", 0);
    EXPECT_EQ(errorOf([&] { OscInput("127.0.0.1", first.port()); }),
              "OSC: cannot listen at 127.0.0.1, port " + std::to_string(first.port()) +
                  ": another program listens there");
    EXPECT_THROW(OscInput("127.0.0.1", first.port()), osc::PortTaken);
    EXPECT_EQ(errorOf([] { OscInput("192.0.2.1", 9000); }), // an address of documents
              "OSC: cannot listen at 192.0.2.1, port 9000: that is no address of this machine");
    EXPECT_THAT(errorOf([] { OscInput("", 9000); }),
                HasSubstr("OSC: cannot listen at , port 9000: "));
}

TEST(OscInputTest, ListensAtIpv6Too)
{
    std::optional<OscInput> input;
    const std::string error = errorOf([&] { input.emplace("::1", std::uint16_t{0}); });
    if (!input) {
        GTEST_SKIP() << "a machine without it: " << error;
    }
    const Sender sender(*input, AF_INET6);
    sender.send(PLACE);
    EXPECT_THAT(next(*input), SizeIs(1));
    sender.send(PING);
    EXPECT_EQ(sender.nextAnswer(), "/pong\0\0\0,\0\0\0"sv);
}

TEST(OscInputTest, ABucketFillsAtItsRateAndMayBeInDebt)
{
    osc::Bucket bucket(10, 5);
    EXPECT_EQ(bucket.fill(100s), 5);
    bucket.spend(9);
    EXPECT_EQ(bucket.fill(100s), -4);
    EXPECT_EQ(bucket.until(0), 400ms);
    EXPECT_EQ(bucket.until(2), 600ms);
    EXPECT_EQ(bucket.fill(100500ms), 1);
    EXPECT_EQ(bucket.until(1), 0s);
    EXPECT_EQ(bucket.fill(200s), 5);
}
