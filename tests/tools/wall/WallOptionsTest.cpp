#include "Options.h"

#include "ErrorOf.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using wall::Options;
using wall::parseOptions;

std::string complaint(const std::vector<std::string>& arguments)
{
    return errorOf([&] { parseOptions(arguments); });
}

} // namespace

TEST(WallOptionsTest, ADescriptionAloneIsShownOnItsHosts)
{
    const Options options = parseOptions({"reef.cfg"});
    EXPECT_EQ(options.description, "reef.cfg");
    EXPECT_FALSE(options.simulate || options.loop || options.isVirtual);
    EXPECT_EQ(options.scale, 1);
    EXPECT_EQ(options.frames, 0u);
    EXPECT_FALSE(options.seed.has_value());
}

TEST(WallOptionsTest, TakesAllOptions)
{
    const Options options =
        parseOptions({"--simulate", "--scale",   "0.25",     "--loop",    "--media",   "reef",
                      "reef.cfg",   "--seed=7",  "--frames", "100",       "--virtual", "--log",
                      "l",          "--status",  "s",        "--hash",    "h",         "--shots",
                      ".",          "--shot-at", "1,20",     "--shot-at", "300"});
    EXPECT_EQ(options.description, "reef.cfg");
    EXPECT_TRUE(options.simulate && options.loop && options.isVirtual);
    EXPECT_EQ(options.scale, 0.25);
    EXPECT_EQ(options.media, "reef");
    EXPECT_EQ(options.seed, 7u);
    EXPECT_EQ(options.frames, 100u);
    EXPECT_EQ(options.log, "l");
    EXPECT_EQ(options.status, "s");
    EXPECT_EQ(options.hash, "h");
    EXPECT_EQ(options.shots, ".");
    EXPECT_THAT(options.shotFrames, ElementsAre(1, 20, 300));
}

TEST(WallOptionsTest, MessagesComeToAPortOfThisMachineUnlessAnAddressIsGiven)
{
    const auto heard = [](const char* text) { return parseOptions({"a", "--osc", text}).osc; };
    EXPECT_EQ(heard("9000")->host, "127.0.0.1");
    EXPECT_EQ(heard("9000")->port, 9000);
    EXPECT_EQ(heard("0.0.0.0:57120")->host, "0.0.0.0");
    EXPECT_EQ(heard("0.0.0.0:57120")->port, 57120);
    EXPECT_EQ(heard("[::1]:9000")->host, "::1");
    EXPECT_FALSE(parseOptions({"a"}).osc.has_value());
    for (const char* bad : {"0", "65536", "reef", "reef:", ":9000", "[]:9000", "9000 "}) {
        EXPECT_THAT(complaint({"a", "--osc", bad}), HasSubstr("--osc takes [ADDRESS:]PORT")) << bad;
    }
    EXPECT_EQ(complaint({"a", "--osc", "9000", "--pattern"}), "--pattern does not go with --osc");
}

TEST(WallOptionsTest, RefusesWhatMakesNoSense)
{
    EXPECT_EQ(complaint({}), "the wall's description is missing");
    EXPECT_EQ(complaint({"a", "b"}), "\"b\" is one word too many");
    EXPECT_EQ(complaint({"a", "--scale", "0.5"}), "--scale goes with --simulate");
    EXPECT_EQ(complaint({"a", "--shots", "d"}), "--shots and --shot-at go together");
    EXPECT_EQ(complaint({"a", "--shot-at", "1"}), "--shots and --shot-at go together");
    EXPECT_EQ(complaint({"a", "--shots", "d", "--shot-at", "1,,2"}),
              "--shot-at takes frames from 1 on, such as 100,200, not \"1,,2\"");
    EXPECT_THAT(complaint({"a", "--frames", "0"}), HasSubstr("--frames takes"));
    EXPECT_THAT(complaint({"a", "--seed", "-1"}), HasSubstr("--seed takes"));
    EXPECT_THAT(complaint({"a", "--simulate", "--scale", "0"}), HasSubstr("--scale takes"));
}

TEST(WallOptionsTest, NoFileReplacesAnother)
{
    EXPECT_EQ(complaint({"a.cfg", "--log", "./a.cfg"}),
              "--log would replace the wall's description");
    EXPECT_EQ(complaint({"a.cfg", "--hash", "a.cfg.more"}),
              "--hash would replace the wall's second file");
    EXPECT_EQ(complaint({"a.cfg", "--hash", "notes", "--log", "b/../notes"}),
              "--hash would replace --log");
    for (const char* log : {"/dev/null", "notes.log"}) {
        const char* const hash = *log == '/' ? log : "notes";
        EXPECT_EQ(parseOptions({"a.cfg", "--hash", hash, "--log", log, "--status", "s"}).log, log);
    }
}
