#include "Health.h"

#include <iomanip>
#include <sstream>

namespace show {

namespace {

std::string text(std::time_t time)
{
    std::tm parts{};
    gmtime_r(&time, &parts);
    std::ostringstream line;
    line << std::put_time(&parts, "%Y-%m-%dT%H:%M:%SZ");
    return line.str();
}

} // namespace

std::string lineOf(const Health& health)
{
    constexpr long MIB = 1L << 20;
    std::ostringstream line;
    line << "time=" << text(health.time) << " showing=" << health.showing << " rate=";
    if (health.rate) {
        line << std::fixed << std::setprecision(1) << *health.rate;
    } else {
        line << "none";
    }
    line << " memory_mib=" << (health.memory + MIB / 2) / MIB << " faults=" << health.faults;
    if (!health.lastFault.empty()) {
        line << " last_fault_time=" << text(health.faultTime)
             << " last_fault=" << std::quoted(health.lastFault);
    }
    return line.str();
}

} // namespace show
