#include "HardwareCounter.h"

#include <gtest/gtest.h>
#include <linux/perf_event.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

/// Touches new pages, each of which is a fault.
void touch(std::size_t pages)
{
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void* const memory =
        mmap(nullptr, pages * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    madvise(memory, pages * page, MADV_NOHUGEPAGE);
    for (std::size_t i = 0; i < pages; ++i) {
        static_cast<volatile char*>(memory)[i * page] = 1;
    }
    munmap(memory, pages * page);
}

// The kernel counts faults on every machine, and the same way as events of the processor, which
// many virtual machines hide.
TEST(HardwareCounterTest, CountsFromStartToStop)
{
    bench::HardwareCounter faults(PERF_TYPE_SOFTWARE, PERF_COUNT_SW_PAGE_FAULTS);
    faults.start();
    if (!faults.stop()) {
        GTEST_SKIP() << "this machine lets nobody count";
    }
    touch(1000);
    faults.start();
    touch(500);
    const std::uint64_t counted = faults.stop().value();
    EXPECT_GE(counted, 500u);
    EXPECT_LT(counted, 1000u) << "those before start are not counted";
    faults.start();
    EXPECT_LT(faults.stop().value(), 100u) << "nor are those of the time before";
}

TEST(HardwareCounterTest, AnEventThatIsNotThereCountsNothing)
{
    bench::HardwareCounter nothing(PERF_TYPE_HARDWARE, ~std::uint64_t{0});
    nothing.start();
    EXPECT_FALSE(nothing.stop());
}

} // namespace
