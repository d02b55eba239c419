#pragma once

#include <cstdint>
#include <optional>

namespace bench {

/// An event counter of the processor or the kernel, for the code of the calling thread. Virtual
/// machines often hide the processor's, and the kernel may refuse them (perf_event_paranoid).
class HardwareCounter {
public:
    /// \param type, config  as of perf_event_open(2)
    HardwareCounter(std::uint32_t type, std::uint64_t config);
    HardwareCounter(const HardwareCounter&) = delete;
    HardwareCounter& operator=(const HardwareCounter&) = delete;
    ~HardwareCounter();

    /// Counts from 0 on.
    void start();

    /// \return what was counted since start, nothing where this machine cannot tell
    std::optional<std::uint64_t> stop();

private:
    int file = -1;
};

} // namespace bench
