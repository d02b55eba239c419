#include "HardwareCounter.h"

#include <linux/perf_event.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace bench {

HardwareCounter::HardwareCounter(std::uint32_t type, std::uint64_t config)
{
    perf_event_attr event = {};
    event.size = sizeof event;
    event.type = type;
    event.config = config;
    event.disabled = 1;
    event.exclude_kernel = 1;
    event.exclude_hv = 1;
    const int thisThread = 0;
    const int anyProcessor = -1;
    const int noGroup = -1;
    file = static_cast<int>(syscall(SYS_perf_event_open, &event, thisThread, anyProcessor, noGroup,
                                    PERF_FLAG_FD_CLOEXEC));
}

HardwareCounter::~HardwareCounter()
{
    if (file >= 0) {
        close(file);
    }
}

void HardwareCounter::start()
{
    ioctl(file, PERF_EVENT_IOC_RESET, 0);
    ioctl(file, PERF_EVENT_IOC_ENABLE, 0);
}

std::optional<std::uint64_t> HardwareCounter::stop()
{
    ioctl(file, PERF_EVENT_IOC_DISABLE, 0);
    std::uint64_t count = 0;
    if (read(file, &count, sizeof count) != sizeof count) {
        return std::nullopt;
    }
    return count;
}

} // namespace bench
