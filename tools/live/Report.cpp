#include "Report.h"

#include "LiveScene.h"
#include "TimeText.h"

#include <iomanip>
#include <sstream>

namespace live {

namespace {

const char* stateOf(const LiveScene& scene, int figure)
{
    if (scene.figures().isLed(figure)) {
        return "led";
    }
    return scene.poses()[static_cast<std::size_t>(figure)] ? "returning" : "recorded";
}

} // namespace

std::string lineOf(const LiveScene& scene, std::time_t time, unsigned seed, const Second& second,
                   const osc::Counts& counts)
{
    std::ostringstream line;
    line << std::fixed << std::setprecision(1) << "time=" << status::text(time)
         << " frame=" << second.frame << " rate=" << second.rate << " seed=" << seed
         << " step=" << scene.step() << " steps=" << scene.numSteps() << std::setprecision(4);
    for (int k = 0; k < static_cast<int>(FIGURES); ++k) {
        line << " figure" << k + 1 << "=" << stateOf(scene, k);
        if (const auto seen = scene.seenAt(k)) {
            line << "," << seen->x << "," << seen->y;
        } else {
            line << ",behind";
        }
    }
    line << std::setprecision(2) << " zoom=" << scene.stage().window.pscale << std::setprecision(1)
         << " messages=" << counts.messages << " dropped=" << counts.dropped
         << " latency_ms=" << second.latency;
    return line.str();
}

} // namespace live
