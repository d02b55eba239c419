#include "Plan.h"

#include "ErrorOf.h"
#include "Protocol.h"
#include "RollCall.h"
#include "SimulatedWall.h"
#include "TempDirectory.h"

#include <gmock/gmock.h>

namespace {

using testing::Each;
using wall::Options;
using wall::Plan;

const std::string TWO = "Cluster TileMap 2 1 Mullions 0.5 0 Nodes 1\n"
                        "Node Hostname reef Windows 2\n"
                        "Map 0 0 Location 0 0 100 80 Cameras 0\n"
                        "Map 1 0 Location 100 0 100 80 Cameras 0\n";

class WallPlanTest : public testing::Test {
protected:
    TempDirectory folder;
    Options options;
    std::vector<Plan> plans;

    WallPlanTest() { options.description = "reef.cfg"; }

    /// What each of so many ranks comes to. The others have no file of that name.
    std::vector<std::string> agree(int ranks)
    {
        SimulatedWall wall(ranks, 1);
        std::vector<std::string> results(static_cast<std::size_t>(ranks));
        plans.assign(results.size(), {});
        wall.run([&](wall::Transport& transport) {
            wall::Protocol protocol(transport, [](const std::string&) {});
            const auto rank = static_cast<std::size_t>(transport.rank());
            Options own = options;
            own.description = rank == 0 ? options.description : "elsewhere.cfg";
            results[rank] = errorOf(
                [&] { plans[rank] = agreeOnPlan(protocol, own, rank == 0, results.size()); });
        });
        return results;
    }

    template<typename Field>
    auto each(Field field) const
    {
        std::vector<decltype(field(plans[0]))> values;
        for (const Plan& plan : plans) {
            values.push_back(field(plan));
        }
        return values;
    }
};

unsigned seedOf(const Plan& plan)
{
    return plan.seed;
}

} // namespace

TEST_F(WallPlanTest, AllRanksHaveTheBytesOfTheFirstOnesFiles)
{
    TempDirectory::write("reef.cfg", TWO);
    TempDirectory::write("reef.cfg.more", "Wall Seed 5 Fit cover Rate 30");
    EXPECT_THAT(agree(2), Each("no error"));
    EXPECT_THAT(each([](const Plan& plan) { return plan.files.description; }), Each(TWO));
    EXPECT_THAT(each([](const Plan& plan) { return plan.files.name; }), Each("reef.cfg"));
    // Two tiles of 100 with a gap of 50.
    EXPECT_THAT(each([](const Plan& plan) { return plan.layout.width; }), Each(250));
    EXPECT_THAT(each([](const Plan& plan) { return plan.layout.rate; }), Each(30));
    EXPECT_THAT(each([](const Plan& plan) { return plan.layout.fit; }), Each(Fit::cover));
    EXPECT_THAT(each(seedOf), Each(5u));
}

TEST_F(WallPlanTest, OptionsWinOverTheSecondFile)
{
    TempDirectory::write("reef.cfg", TWO);
    TempDirectory::write("reef.cfg.more", "Wall Seed 5 Fit cover");
    options.seed = 9;
    options.fit = Fit::contain;
    options.simulate = true;
    options.scale = 0.5;
    EXPECT_THAT(agree(2), Each("no error"));
    EXPECT_THAT(each(seedOf), Each(9u));
    EXPECT_THAT(each([](const Plan& plan) { return plan.layout.fit; }), Each(Fit::contain));
    EXPECT_THAT(each([](const Plan& plan) { return plan.layout.width; }), Each(125));
}

TEST_F(WallPlanTest, WithoutASeedTheFirstRanksTimeIsAllRanksSeed)
{
    TempDirectory::write("reef.cfg", TWO);
    EXPECT_THAT(agree(2), Each("no error"));
    EXPECT_EQ(plans[1].seed, plans[0].seed);
    EXPECT_NE(plans[0].seed, 0u);
}

TEST_F(WallPlanTest, WhatIsWrongIsSaidOnAllRanks)
{
    EXPECT_THAT(agree(2), Each("reef.cfg: cannot be opened: No such file or directory"));
    TempDirectory::write("reef.cfg", "Cluster TileMap 2 x");
    EXPECT_THAT(agree(2),
                Each("reef.cfg:1: \"x\" after TileMap is no whole number, or a too large one"));
    TempDirectory::write("reef.cfg", TWO);
    EXPECT_THAT(agree(3), Each("reef.cfg has 2 windows, and there are 3 ranks"));
}
