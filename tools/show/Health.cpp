#include "Health.h"

#include "TimeText.h"

#include <iomanip>
#include <sstream>

namespace show {

std::string lineOf(const Health& health)
{
    constexpr long MIB = 1L << 20;
    std::ostringstream line;
    line << "time=" << status::text(health.time) << " showing=" << health.showing << " rate=";
    if (health.rate) {
        line << std::fixed << std::setprecision(1) << *health.rate;
    } else {
        line << "none";
    }
    line << " memory_mib=" << (health.memory + MIB / 2) / MIB << " faults=" << health.faults;
    if (!health.lastFault.empty()) {
        line << " last_fault_time=" << status::text(health.faultTime)
             << " last_fault=" << std::quoted(health.lastFault);
    }
    return line.str();
}

} // namespace show
