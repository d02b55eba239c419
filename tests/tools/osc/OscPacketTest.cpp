#include "Packet.h"
#include "PacketBytes.h"

#include <cstdlib>
#include <lo/lo.h>
#include <memory>

namespace {

using osc::IMMEDIATELY;
using osc::PacketMessage;
using testing::ElementsAre;

constexpr auto PLACE = "/figure/1\0\0\0,ff\0\x3e\x80\0\0\x3f\x40\0\0"sv; // 0.25, 0.75
constexpr auto RESTART = "/restart\0\0\0\0,\0\0\0"sv;
constexpr osc::TimeTag SECOND = 1ULL << 32;

/// The messages of a packet as "address types due"; "malformed" when it is.
std::vector<std::string> messagesOf(std::string_view packet)
{
    // A copy of its own, so that a sanitizer sees a read beyond it.
    const std::vector<char> copy(packet.begin(), packet.end());
    std::vector<PacketMessage> messages(3);
    if (!osc::divide(bytesOf({copy.data(), copy.size()}), messages)) {
        EXPECT_TRUE(messages.empty());
        return {"malformed"};
    }
    std::vector<std::string> lines;
    for (const PacketMessage& message : messages) {
        lines.push_back(std::string(message.address) + " " + std::string(message.types) + " " +
                        std::to_string(message.due));
    }
    return lines;
}

bool isWellFormed(std::string_view packet)
{
    return messagesOf(packet) != std::vector<std::string>{"malformed"};
}

/// Bundles in each other, so many of them.
std::string nested(int depth)
{
    std::string packet(RESTART);
    for (int i = 0; i < depth; ++i) {
        packet = bundle(IMMEDIATELY, {packet});
    }
    return packet;
}

} // namespace

TEST(OscPacketTest, AMessageHasAnAddressAndTypes)
{
    std::vector<PacketMessage> messages;
    ASSERT_TRUE(osc::divide(bytesOf(PLACE), messages));
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].address, "/figure/1");
    EXPECT_EQ(messages[0].types, "ff");
    EXPECT_EQ(messages[0].due, IMMEDIATELY);
    EXPECT_EQ(messages[0].bytes.data(), bytesOf(PLACE).data());
    EXPECT_EQ(messages[0].bytes.size(), 24U);

    EXPECT_THAT(messagesOf(RESTART), ElementsAre("/restart  1"));
}

TEST(OscPacketTest, EachTypeHasItsSize)
{
    EXPECT_TRUE(isWellFormed("/x\0\0,ifcrm\0\0"
                             "iiii"
                             "ffff"
                             "cccc"
                             "rrrr"
                             "mmmm"sv));
    EXPECT_TRUE(isWellFormed("/x\0\0,hdt\0\0\0\0"
                             "hhhhhhhh"
                             "dddddddd"
                             "tttttttt"sv));
    EXPECT_TRUE(isWellFormed("/x\0\0,sS\0"
                             "abc\0"
                             "abcd\0\0\0\0"sv));
    EXPECT_TRUE(isWellFormed("/x\0\0,bb\0"
                             "\0\0\0\0"
                             "\0\0\0\5abcde\0\0\0"sv));
    EXPECT_TRUE(isWellFormed("/x\0\0,[TFNI]\0"sv));
    EXPECT_FALSE(isWellFormed("/x\0\0,q\0\0qqqq"sv));
}

TEST(OscPacketTest, WhatIsCutOffOrTooLongIsMalformed)
{
    const auto mixed = "/x\0\0,isbd\0\0\0"
                       "iiii"
                       "abcd\0\0\0\0"
                       "\0\0\0\2ab\0\0"
                       "dddddddd"sv;
    const std::string timed = bundle(SECOND, {PLACE, RESTART});
    for (const std::string_view whole : {PLACE, RESTART, mixed}) {
        EXPECT_TRUE(isWellFormed(whole));
        for (std::size_t size = 0; size < whole.size(); ++size) {
            EXPECT_FALSE(isWellFormed(whole.substr(0, size))) << size;
        }
        for (const std::size_t more : {1, 2, 3, 4, 8}) {
            EXPECT_FALSE(isWellFormed(std::string(whole) + std::string(more, '\0'))) << more;
        }
    }
    // A bundle can also end after 16 bytes, or after its first element.
    for (std::size_t size = 0; size < timed.size(); ++size) {
        EXPECT_EQ(isWellFormed(timed.substr(0, size)), size == 16 || size == 44) << size;
    }
}

TEST(OscPacketTest, TextsEndAndAreFilledUpWithZeros)
{
    EXPECT_FALSE(isWellFormed("/restart\0\0\1\0,\0\0\0"sv));
    EXPECT_FALSE(isWellFormed("/restart\0\0\0\0,\0\0x"sv));
    EXPECT_FALSE(isWellFormed("/x\0\0,s\0\0abcd"sv));
    EXPECT_FALSE(isWellFormed("/x\0\0,b\0\0\0\0\0\1axyz"sv));
    EXPECT_FALSE(isWellFormed("/abc"sv));
    EXPECT_FALSE(isWellFormed("/abc\0\0\0\0,abc"sv));
}

TEST(OscPacketTest, AnAddressStartsWithASlashAndTypesWithAComma)
{
    EXPECT_FALSE(isWellFormed("restart\0,\0\0\0"sv));
    EXPECT_FALSE(isWellFormed("\0\0\0\0,\0\0\0"sv));
    EXPECT_FALSE(isWellFormed("/restart\0\0\0\0"sv));
    EXPECT_FALSE(isWellFormed("/seed\0\0\0\0\0\0\7"sv));
    EXPECT_FALSE(isWellFormed("/seed\0\0\0i\0\0\0\0\0\0\7"sv));
}

TEST(OscPacketTest, SizesOfBlobsAreWithinTheMessage)
{
    EXPECT_FALSE(isWellFormed("/x\0\0,b\0\0"sv));
    for (const std::uint32_t size : {5U, 8U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFCU, 0xFFFFFFFFU}) {
        EXPECT_FALSE(isWellFormed(std::string("/x\0\0,b\0\0"sv) + fourBytes(size) + "abcd"))
            << size;
    }
}

TEST(OscPacketTest, ABundleHasMessagesAndATime)
{
    EXPECT_THAT(messagesOf(bundle(7 * SECOND, {PLACE, RESTART, PLACE})),
                ElementsAre("/figure/1 ff 30064771072", "/restart  30064771072",
                            "/figure/1 ff 30064771072"));
    EXPECT_THAT(messagesOf(bundle(SECOND, {})), ElementsAre());
    EXPECT_FALSE(isWellFormed("#bundlE\0\0\0\0\0\0\0\0\1"sv));
    EXPECT_FALSE(isWellFormed("#bun"sv));
}

TEST(OscPacketTest, ABundleInABundleIsNotDueBeforeIt)
{
    const auto dueOf = [](osc::TimeTag outer, osc::TimeTag inner) {
        return messagesOf(bundle(outer, {bundle(inner, {RESTART})})).front();
    };
    EXPECT_EQ(dueOf(1000, 2000), "/restart  2000");
    EXPECT_EQ(dueOf(2000, 1000), "/restart  2000");
    EXPECT_EQ(dueOf(IMMEDIATELY, 2000), "/restart  2000");
    EXPECT_EQ(dueOf(2000, IMMEDIATELY), "/restart  2000");
    EXPECT_EQ(dueOf(IMMEDIATELY, IMMEDIATELY), "/restart  1");
    EXPECT_EQ(dueOf(0, 0), "/restart  1");
    // Seconds begin anew at 0 in 2036.
    EXPECT_EQ(dueOf(0xFFFFFFFFFFFFFFFF, 2000), "/restart  2000");
}

TEST(OscPacketTest, ReadsWhatLibloWrites)
{
    const lo_bundle outer = lo_bundle_new({5, 0x80000000});
    const lo_bundle inner = lo_bundle_new({6, 0});
    const lo_message mixed = lo_message_new();
    lo_message_add(mixed, "isdhT", 7, "three", 0.5, std::int64_t{9});
    lo_bundle_add_message(outer, "/mixed", mixed);
    lo_bundle_add_bundle(outer, inner);
    lo_bundle_add_message(inner, "/restart", lo_message_new());
    std::size_t size = 0;
    const std::unique_ptr<void, decltype(&std::free)> packet(
        lo_bundle_serialise(outer, nullptr, &size), std::free);
    lo_bundle_free_recursive(outer);
    EXPECT_THAT(messagesOf({static_cast<const char*>(packet.get()), size}),
                ElementsAre("/mixed isdhT 23622320128", "/restart  25769803776"));
}

TEST(OscPacketTest, SizesInABundleAreWithinIt)
{
    for (const std::uint32_t size :
         {0U, 1U, 8U, 15U, 17U, 20U, 0x80000000U, 0xFFFFFFF0U, 0xFFFFFFFFU}) {
        const std::string packet = bundle(SECOND, {}) + fourBytes(size) + std::string(RESTART);
        EXPECT_FALSE(isWellFormed(packet)) << size;
    }
    EXPECT_FALSE(isWellFormed(bundle(SECOND, {PLACE, "/bad"sv}))) << "not even the good one";
}

TEST(OscPacketTest, BundlesLieInEachOtherEightDeep)
{
    EXPECT_THAT(messagesOf(nested(8)), ElementsAre("/restart  1"));
    EXPECT_FALSE(isWellFormed(nested(9)));
    EXPECT_FALSE(isWellFormed(nested(3000)));
}

TEST(OscPacketTest, TheFullestPacketNeedsNoMoreRoomThanItSays)
{
    // 16 bytes, and 12 for each element.
    const std::string fullest =
        bundle(IMMEDIATELY, std::vector<std::string_view>(5457, "/\0\0\0,\0\0\0"sv));
    ASSERT_EQ(fullest.size(), 65500U);
    std::vector<PacketMessage> messages;
    messages.reserve(osc::MOST_MESSAGES);
    const auto* const room = messages.data();
    EXPECT_TRUE(osc::divide(bytesOf(fullest), messages));
    EXPECT_EQ(messages.size(), 5457U);
    EXPECT_EQ(messages.data(), room);

    EXPECT_FALSE(isWellFormed(fullest + element("/\0\0\0,\0\0\0"sv))) << "longer than a datagram";
}
