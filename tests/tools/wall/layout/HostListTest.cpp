#include "HostList.h"

#include "Walls.h"

namespace {

/// Three hosts with two windows, none and one.
WallLayout threeHosts()
{
    return layoutOf(describe("3 1", "0 0",
                             {{"reef-b", {{"2 0", "0 0 9 9"}, {"0 0", "9 0 9 9"}}},
                              {"idle", {}},
                              {"reef-a", {{"1 0", "0 0 9 9"}}}}));
}

TEST(HostListTest, HostsStandInTheOrderOfTheirRanks)
{
    EXPECT_EQ(hosts::sequence(threeHosts()), "reef-b\nreef-b\nreef-a\n");
}

} // namespace
