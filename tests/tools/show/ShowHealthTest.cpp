#include "Health.h"

#include <gmock/gmock.h>

namespace {

using show::Health;
using show::lineOf;

TEST(ShowHealthTest, IsOneLine)
{
    Health health;
    health.time = 1795344042; // 2026-11-22 10:40:42 UTC
    health.showing = 12;
    health.rate = 39.96;
    health.memory = 313 * 1024 * 1024 - 1;
    EXPECT_EQ(lineOf(health),
              "time=2026-11-22T10:40:42Z showing=12 rate=40.0 memory_mib=313 faults=0");
}

TEST(ShowHealthTest, TellsTheLastFaultInQuotes)
{
    Health health;
    health.faults = 2;
    health.lastFault = "the program \"x\" ended";
    EXPECT_EQ(lineOf(health), "time=1970-01-01T00:00:00Z showing=0 rate=none memory_mib=0 faults=2 "
                              "last_fault_time=1970-01-01T00:00:00Z "
                              "last_fault=\"the program \\\"x\\\" ended\"");
}

} // namespace
