#include "RollCall.h"

#include "ErrorOf.h"
#include "Protocol.h"
#include "SimulatedWall.h"

#include <gmock/gmock.h>

namespace {

using testing::Each;
using testing::ElementsAre;
using wall::Readiness;

/// What each of three ranks comes to: the hosts, or an error.
template<typename Work>
std::vector<std::string> resultsOf(Work work)
{
    SimulatedWall wall(3, 1);
    std::vector<std::string> results(3);
    wall.run([&](wall::Transport& transport) {
        wall::Protocol protocol(transport, [](const std::string&) {});
        const auto rank = static_cast<std::size_t>(transport.rank());
        results[rank] = errorOf([&] { work(protocol, rank); });
    });
    return results;
}

const std::vector<std::string> HOSTS = {"reef-left", "reef-left", "reef-right"};

std::vector<std::string> readinessOf(const std::vector<Readiness>& ranks)
{
    return resultsOf([&](wall::Protocol& protocol, std::size_t rank) {
        wall::exchangeReadiness(protocol, HOSTS, ranks[rank]);
    });
}

} // namespace

TEST(WallRollCallTest, RanksOfOneVersionLearnTheirHosts)
{
    const auto results = resultsOf([](wall::Protocol& protocol, std::size_t rank) {
        EXPECT_EQ(wall::exchangeNames(protocol, "1.2", HOSTS[rank]), HOSTS);
        EXPECT_EQ(protocol.nameOf(2), "reef-right (rank 2)");
    });
    EXPECT_THAT(results, Each("no error"));
}

TEST(WallRollCallTest, AnotherVersionIsNamedOnAllRanks)
{
    const auto results = resultsOf([](wall::Protocol& protocol, std::size_t rank) {
        wall::exchangeNames(protocol, rank == 2 ? "1.3" : "1.2", HOSTS[rank]);
    });
    EXPECT_THAT(results,
                Each("reef-right: kelpix-wall is of version 1.3, on reef-left of version 1.2"));
}

TEST(WallRollCallTest, RanksThatAreReadyGoOn)
{
    EXPECT_THAT(readinessOf({{7, ""}, {7, ""}, {7, ""}}), Each("no error"));
}

TEST(WallRollCallTest, WhatIsMissingIsSaidOnceForEachHost)
{
    EXPECT_THAT(readinessOf({{0, "no media"}, {0, "no media"}, {7, ""}}),
                Each("reef-left: no media"));
    EXPECT_THAT(readinessOf({{7, ""}, {0, "no media"}, {0, "no display"}}),
                Each("reef-left: no media\nreef-right: no display"));
}

TEST(WallRollCallTest, OtherMediaAreNamed)
{
    EXPECT_THAT(readinessOf({{7, ""}, {7, ""}, {8, ""}}),
                Each("reef-right: the media are not those of reef-left"));
}

TEST(WallRollCallTest, ALongReasonIsCut)
{
    const auto results = readinessOf({{0, std::string(5000, 'x')}, {0, ""}, {0, ""}});
    EXPECT_THAT(results, Each(testing::StartsWith("reef-left: xxx")));
    EXPECT_LT(results[0].size(), 600u);
}
