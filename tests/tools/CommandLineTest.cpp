#include "CommandLine.h"

#include "ErrorOf.h"

#include <csignal>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using commandline::Action;
using commandline::Arguments;
using commandline::Option;
using commandline::Rest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// A program with an option of each kind.
class CommandLineTest : public testing::Test {
protected:
    std::filesystem::path out;
    std::uint64_t seed = 1;
    double hours = 2;
    bool quiet = false;
    const std::vector<Option> options = {
        {"--out", "DIR", "a folder", commandline::text(out)},
        {"--seed", "N", "a number\nof two lines", commandline::number<std::uint64_t>(seed, 0, 9)},
        {"--hours", "H", "a fraction", commandline::number(hours, 0.0, 100000.0)},
        {"--even",
         "N",
         "a number of its own kind",
         {"an even digit", [](const std::string& text) { return text == "2" || text == "4"; }}},
        {"--quiet", "", "a flag", commandline::flag(quiet)},
    };

    Arguments parse(const std::vector<std::string>& arguments, Rest rest = Rest::refused) const
    {
        return commandline::parse(arguments, options, rest);
    }

    /// What is said of a command line that makes no sense.
    std::string complaint(const std::vector<std::string>& arguments) const
    {
        return errorOf([&] { parse(arguments); });
    }
};

TEST_F(CommandLineTest, WordsThatAreNoOptionsMayStandAnywhere)
{
    const Arguments parsed =
        parse({"wall", "--seed", "7", "other", "--quiet", "--", "--help"}, Rest::anywhere);
    EXPECT_THAT(parsed.rest, ElementsAre("wall", "other", "--help"));
    EXPECT_EQ(seed, 7u);
    EXPECT_TRUE(quiet);
    EXPECT_EQ(errorOf([&] { parse({"wall", "-x"}, Rest::anywhere); }), "unknown option \"-x\"");
}

TEST(CommandLineValueTest, AValueHasAsManyWordsAsItsPlaceholder)
{
    std::filesystem::path place;
    const std::vector<Option> options = {{"--tile", "C R", "a place", commandline::text(place)}};
    const Arguments parsed =
        commandline::parse({"--tile", "1", "2", "more"}, options, Rest::anywhere);
    EXPECT_EQ(place, "1 2");
    EXPECT_THAT(parsed.rest, ElementsAre("more"));
    commandline::parse({"--tile=3 4"}, options);
    EXPECT_EQ(place, "3 4");
    commandline::parse({"--tile", "5"}, options);
    EXPECT_EQ(place, "5") << "whoever takes the value refuses it";
}

TEST_F(CommandLineTest, TakesAValueAsTheNextWordOrAfterAnEqualsSign)
{
    const Arguments parsed = parse({"--out", "a b", "--seed=7", "--hours=0.5", "--seed", "8"});
    EXPECT_EQ(parsed.action, Action::work);
    EXPECT_THAT(parsed.given, ElementsAre("--out", "--seed", "--hours", "--seed"));
    EXPECT_THAT(parsed.rest, IsEmpty());
    EXPECT_EQ(out, "a b");
    EXPECT_EQ(seed, 8u);
    EXPECT_EQ(hours, 0.5);
    parse({"--out=a=b"});
    EXPECT_EQ(out, "a=b");
    parse({"--out", "--seed"});
    EXPECT_EQ(out, "--seed");
}

TEST_F(CommandLineTest, AFlagTakesNoValue)
{
    const Arguments parsed = parse({"--quiet", "--seed=7"});
    EXPECT_THAT(parsed.given, ElementsAre("--quiet", "--seed"));
    EXPECT_TRUE(quiet);
    EXPECT_EQ(seed, 7u);
    EXPECT_EQ(complaint({"--quiet=yes"}), "--quiet takes no value");
    EXPECT_EQ(complaint({"--quiet="}), "--quiet takes no value");
}

TEST_F(CommandLineTest, NothingIsAskedForByNoWords)
{
    const Arguments parsed = parse({});
    EXPECT_EQ(parsed.action, Action::work);
    EXPECT_THAT(parsed.given, IsEmpty());
}

TEST_F(CommandLineTest, HelpAndVersionEndTheLine)
{
    EXPECT_EQ(parse({"-h"}).action, Action::help);
    EXPECT_EQ(parse({"--help"}).action, Action::help);
    EXPECT_EQ(parse({"--seed", "3", "--version", "--nonsense"}).action, Action::version);
    EXPECT_EQ(complaint({"--nonsense", "--help"}), "unknown option \"--nonsense\"");
    EXPECT_EQ(complaint({"--help=all"}), "--help takes no value");
    EXPECT_EQ(complaint({"--version="}), "--version takes no value");
}

TEST_F(CommandLineTest, SaysWhatMakesNoSense)
{
    EXPECT_EQ(complaint({"--color", "red"}), "unknown option \"--color\"");
    EXPECT_EQ(complaint({"--color=red"}), "unknown option \"--color=red\"");
    for (const char* word : {"", "-", "-o", "-h=", "--ou", "--", "--=", "-help"}) {
        EXPECT_EQ(complaint({word}), std::string("unknown option \"") + word + "\"");
    }
    EXPECT_EQ(complaint({"reef"}), "\"reef\" is one word too many");
    EXPECT_EQ(complaint({"out=x"}), "\"out=x\" is one word too many");
    EXPECT_EQ(complaint({"--out"}), "--out needs a value");
    EXPECT_EQ(complaint({"--out", ""}), "--out needs a value");
    EXPECT_EQ(complaint({"--out=", "x"}), "--out needs a value");
    EXPECT_EQ(complaint({"--even=3"}), "--even takes an even digit, not \"3\"");
    EXPECT_EQ(complaint({"--seed", "10"}), "--seed takes a whole number from 0 to 9, not \"10\"");
    EXPECT_EQ(complaint({"--hours", "-1"}), "--hours takes a number from 0 to 100000, not \"-1\"");
}

TEST_F(CommandLineTest, ReadsWholeNumbersStrictly)
{
    for (const char* text : {"-1", "+1", "1x", "x", " 1", "1 ", "1.0", "1e0", "0x1", "10", "-0",
                             "18446744073709551616", "18446744073709551617"}) {
        EXPECT_EQ(complaint({"--seed", text}),
                  std::string("--seed takes a whole number from 0 to 9, not \"") + text + "\"");
    }
    EXPECT_EQ(seed, 1u) << "a refused number leaves the old one";
    std::uint64_t most = 0;
    EXPECT_TRUE(
        commandline::readNumber<std::uint64_t>("18446744073709551615", 0, UINT64_MAX, most));
    EXPECT_EQ(most, UINT64_MAX);
}

TEST_F(CommandLineTest, ReadsFractionsStrictly)
{
    for (const char* text : {"nan", "-nan", "inf", "infinity", "1h", "1,5", "0x10", "1e", ".",
                             "1e999", "100000.1", "-0.1", " 1"}) {
        EXPECT_EQ(complaint({"--hours", text}),
                  std::string("--hours takes a number from 0 to 100000, not \"") + text + "\"");
    }
    EXPECT_EQ(hours, 2);
    parse({"--hours", "1e2"});
    EXPECT_EQ(hours, 100);
}

TEST_F(CommandLineTest, GivesWhatFollowsTwoDashesToWhoWantsIt)
{
    const Arguments parsed = parse({"--seed", "3", "--", "--help", "--"}, Rest::allowed);
    EXPECT_EQ(parsed.action, Action::work);
    EXPECT_THAT(parsed.rest, ElementsAre("--help", "--"));
    EXPECT_EQ(seed, 3u);
}

TEST_F(CommandLineTest, DescribesEveryOption)
{
    EXPECT_EQ(commandline::describe(options), "  --out DIR   a folder\n"
                                              "  --seed N    a number\n"
                                              "              of two lines\n"
                                              "  --hours H   a fraction\n"
                                              "  --even N    a number of its own kind\n"
                                              "  --quiet     a flag\n"
                                              "  -h, --help  prints this text\n"
                                              "  --version   prints the version\n");
}

TEST(CommandLineRunTest, SaysWhyAProgramEnded)
{
    const auto outcome = [](const std::function<int()>& work) {
        testing::internal::CaptureStderr();
        const int status = commandline::run("kelpix-x", work);
        return std::to_string(status) + " " + testing::internal::GetCapturedStderr();
    };
    EXPECT_EQ(outcome([] { return 7; }), "7 ");
    EXPECT_EQ(outcome([]() -> int { throw commandline::UsageError("--out DIR is missing"); }),
              "2 kelpix-x: --out DIR is missing\nkelpix-x --help lists the options.\n");
    EXPECT_EQ(outcome([]() -> int { throw std::runtime_error("no media"); }),
              "1 kelpix-x: no media\n");
    EXPECT_EQ(outcome([]() -> int { throw std::runtime_error("no a\nb\x1b[2J"); }),
              "1 kelpix-x: no a\\x0ab\\x1b[2J\n");
    EXPECT_EQ(outcome([]() -> int { throw commandline::UsageError("not \"\x1b[2J\""); }),
              "2 kelpix-x: not \"\\x1b[2J\"\nkelpix-x --help lists the options.\n");
    EXPECT_EQ(outcome([]() -> int { throw std::bad_alloc(); }), "1 kelpix-x: not enough memory\n");
}

TEST(CommandLineRunTest, LearnsHowChildrenEndWhateverItsParentIgnores)
{
    std::signal(SIGCHLD, SIG_IGN);
    const int status = commandline::run("kelpix-x", [] {
        const pid_t child = fork();
        if (child == 0) {
            _exit(3);
        }
        int end = 0;
        return waitpid(child, &end, 0) == child ? WEXITSTATUS(end) : -1;
    });
    EXPECT_EQ(status, 3);
}

TEST(CommandLineAnswerTest, PrintsWhatWasAskedFor)
{
    const auto answer = [](Action action) {
        testing::internal::CaptureStdout();
        commandline::answer(action, "kelpix-x", "usage: kelpix-x\n");
        return testing::internal::GetCapturedStdout();
    };
    EXPECT_EQ(answer(Action::help), "usage: kelpix-x\n");
    EXPECT_THAT(answer(Action::version), testing::MatchesRegex("kelpix-x [0-9.]+\n"));
}

} // namespace
