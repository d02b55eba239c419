#include "PacketBytes.h"
#include "Request.h"

#include <bit>
#include <cmath>
#include <limits>
#include <sstream>

namespace {

using osc::Command;
using osc::Request;
using Kind = Request::Kind;

std::string nameOf(Command::Kind kind)
{
    const std::vector<std::string> names = {"FIGURE", "RELEASE", "ZOOM", "MOVE",
                                            "TURN",   "CLICK",   "SEED", "RESTART"};
    return names.at(static_cast<std::size_t>(kind));
}

/// What a packet of one message comes to: "FIGURE 1 0.25 0.75 0".
std::string resultOf(std::string_view packet)
{
    std::vector<osc::PacketMessage> messages;
    if (!osc::divide(bytesOf(packet), messages) || messages.size() != 1) {
        return "no message";
    }
    const Request request = osc::readRequest(messages[0]);
    switch (request.kind) {
    case Kind::COMMAND:
        break;
    case Kind::PING:
        return "ping";
    case Kind::STATUS:
        return "status";
    case Kind::NOTHING:
        return "nothing";
    case Kind::UNKNOWN:
        return "unknown";
    case Kind::REFUSED:
        return "refused";
    }
    const Command& command = request.command;
    std::ostringstream line;
    line << nameOf(command.kind) << " " << command.figure << " " << command.x << " " << command.y
         << " " << command.seed;
    return line.str();
}

/// A text, with the zeros that OSC wants behind it.
std::string padded(std::string text)
{
    text.resize((text.size() / 4 + 1) * 4, '\0');
    return text;
}

/// A message with one or two doubles.
std::string message(const std::string& address, const std::vector<double>& numbers)
{
    std::string packet = padded(address) + padded("," + std::string(numbers.size(), 'd'));
    for (const double number : numbers) {
        const auto bits = std::bit_cast<std::uint64_t>(number);
        packet += fourBytes(static_cast<std::uint32_t>(bits >> 32));
        packet += fourBytes(static_cast<std::uint32_t>(bits));
    }
    return packet;
}

std::string button(const std::string& address)
{
    return padded(address) + padded(",");
}

} // namespace

TEST(OscRequestTest, NumbersAreOfFourTypes)
{
    EXPECT_EQ(resultOf("/figure/1\0\0\0,ff\0\x3e\x80\0\0\x3f\x40\0\0"sv), "FIGURE 0 0.25 0.75 0");
    EXPECT_EQ(resultOf("/figure/2\0\0\0,ii\0\0\0\0\1\0\0\0\0"sv), "FIGURE 1 1 0 0");
    EXPECT_EQ(resultOf("/figure/3\0\0\0,dh\0\x3f\xe0\0\0\0\0\0\0\0\0\0\0\0\0\0\1"sv),
              "FIGURE 2 0.5 1 0");
    EXPECT_EQ(resultOf("/view/zoom\0\0,i\0\0\xff\xff\xff\xfe"sv), "ZOOM 0 -2 0 0");
    EXPECT_EQ(resultOf("/seed\0\0\0,h\0\0\0\0\0\0\xff\xff\xff\xff"sv), "SEED 0 0 0 4294967295");
}

TEST(OscRequestTest, OtherTypesAreRefused)
{
    EXPECT_EQ(resultOf("/seed\0\0\0,s\0\0"
                       "7\0\0\0"sv),
              "refused");
    EXPECT_EQ(resultOf("/seed\0\0\0,T\0\0"sv), "refused");
    EXPECT_EQ(resultOf("/seed\0\0\0,N\0\0"sv), "refused");
    EXPECT_EQ(resultOf("/seed\0\0\0,t\0\0\0\0\0\0\0\0\0\1"sv), "refused");
    EXPECT_EQ(resultOf("/seed\0\0\0,c\0\0\0\0\0\7"sv), "refused");
    EXPECT_EQ(resultOf("/seed\0\0\0,b\0\0\0\0\0\1\7\0\0\0"sv), "refused");
    EXPECT_EQ(resultOf("/seed\0\0\0,[i]\0\0\0\0\0\0\0\7"sv), "refused");
    EXPECT_EQ(resultOf("/restart\0\0\0\0,s\0\0now\0"sv), "refused");
}

TEST(OscRequestTest, TheNumberOfNumbersIsRight)
{
    EXPECT_EQ(resultOf(message("/figure/1", {})), "refused");
    EXPECT_EQ(resultOf(message("/figure/1", {0.5})), "refused");
    EXPECT_EQ(resultOf(message("/figure/1", {0.5, 0.5, 0.5})), "refused");
    EXPECT_EQ(resultOf(message("/view/zoom", {1, 1})), "refused");
    EXPECT_EQ(resultOf(message("/view/move", {1})), "refused");
    EXPECT_EQ(resultOf(message("/restart", {1, 1})), "refused");
    EXPECT_EQ(resultOf(message("/ping", {1})), "refused");
    EXPECT_EQ(resultOf(message("/click", std::vector<double>(1000, 0.5))), "refused");
}

TEST(OscRequestTest, EachAddressHasItsRange)
{
    struct Range {
        std::string address;
        std::string name;
        double least;
        double greatest;
    };
    for (const auto& [address, name, least, greatest] :
         {Range{"/figure/1", "FIGURE", 0, 1}, Range{"/view/move", "MOVE", -1, 1},
          Range{"/view/turn", "TURN", -180, 180}, Range{"/click", "CLICK", 0, 1}}) {
        std::ostringstream ends;
        ends << name << " 0 " << least << " " << greatest << " 0";
        EXPECT_EQ(resultOf(message(address, {least, greatest})), ends.str());
        const double infinity = std::numeric_limits<double>::infinity();
        for (const double wrong :
             {std::nextafter(least, -infinity), std::nextafter(greatest, infinity), infinity,
              -infinity, std::nan("")}) {
            EXPECT_EQ(resultOf(message(address, {wrong, 0})), "refused") << address << " " << wrong;
            EXPECT_EQ(resultOf(message(address, {0, wrong})), "refused") << address << " " << wrong;
        }
    }
    EXPECT_EQ(resultOf(message("/view/zoom", {10})), "ZOOM 0 10 0 0");
    EXPECT_EQ(resultOf(message("/view/zoom", {-10.001})), "refused");
    EXPECT_EQ(resultOf("/figure/1\0\0\0,ff\0\x7f\xc0\0\0\x3f\x40\0\0"sv), "refused")
        << "NaN, float";
    EXPECT_EQ(resultOf("/figure/1\0\0\0,hi\0\x7f\xff\xff\xff\xff\xff\xff\xff\0\0\0\0"sv),
              "refused");
}

TEST(OscRequestTest, ASeedIsAWholeNumber)
{
    EXPECT_EQ(resultOf(message("/seed", {7})), "SEED 0 0 0 7");
    EXPECT_EQ(resultOf(message("/seed", {0})), "SEED 0 0 0 0");
    EXPECT_EQ(resultOf(message("/seed", {4294967295.0})), "SEED 0 0 0 4294967295");
    EXPECT_EQ(resultOf(message("/seed", {4294967296.0})), "refused");
    EXPECT_EQ(resultOf(message("/seed", {7.5})), "refused");
    EXPECT_EQ(resultOf(message("/seed", {-1})), "refused");
    EXPECT_EQ(resultOf("/seed\0\0\0,i\0\0\xff\xff\xff\xff"sv), "refused");
}

TEST(OscRequestTest, ButtonsMaySendThatTheyAreLetGo)
{
    EXPECT_EQ(resultOf(button("/restart")), "RESTART 0 0 0 0");
    EXPECT_EQ(resultOf(button("/figure/3/release")), "RELEASE 2 0 0 0");
    for (const double pressed : {1.0, 0.01, 127.0, -1.0}) {
        EXPECT_EQ(resultOf(message("/restart", {pressed})), "RESTART 0 0 0 0");
        EXPECT_EQ(resultOf(message("/figure/2/release", {pressed})), "RELEASE 1 0 0 0");
    }
    EXPECT_EQ(resultOf(message("/restart", {0})), "nothing");
    EXPECT_EQ(resultOf(message("/figure/2/release", {-0.0})), "nothing");
    EXPECT_EQ(resultOf(message("/restart", {std::nan("")})), "refused");
}

TEST(OscRequestTest, Questions)
{
    EXPECT_EQ(resultOf(button("/ping")), "ping");
    EXPECT_EQ(resultOf(button("/status")), "status");
    EXPECT_EQ(resultOf("/status\0,s\0\0up\0\0"sv), "refused") << "an answer that came back";
}

TEST(OscRequestTest, NothingElseHasAnAddress)
{
    for (const std::string address : {"/",
                                      "/figure",
                                      "/figure/",
                                      "/figure/0",
                                      "/figure/4",
                                      "/figure/12",
                                      "/figure/1/",
                                      "/figure/1/x",
                                      "/figure//release",
                                      "/figure/1/release/",
                                      "/Figure/1",
                                      "/figure/1 ",
                                      "/view",
                                      "/pong",
                                      "/figure/*",
                                      "/figure/?",
                                      "/figure/[1-3]",
                                      "/figure/{1,2}",
                                      "/*",
                                      "//restart",
                                      "/{",
                                      "/[",
                                      "/figure/\xff"}) {
        EXPECT_EQ(resultOf(message(address, {0.5, 0.5})), "unknown") << address;
        EXPECT_EQ(resultOf(button(address)), "unknown") << address;
    }
    EXPECT_EQ(resultOf(button("/" + std::string(60000, '*') + "b")), "unknown");
}
