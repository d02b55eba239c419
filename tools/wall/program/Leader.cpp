#include "Leader.h"

#include "Options.h"
#include "Rank.h"

#include <chrono>
#include <thread>

namespace wall {

Leader::Leader(const Options& given, Rank& rank)
    : options(given), first(rank), pace(rank.plan.layout.rate)
{
}

void Leader::awaitFrame()
{
    if (options.isVirtual) {
        return;
    }
    const std::chrono::duration<double> now = std::chrono::steady_clock::now().time_since_epoch();
    std::this_thread::sleep_for(std::chrono::duration<double>(pace.untilNext(now.count())));
    pace.begin();
}

Lead Leader::decide(std::uint32_t frame)
{
    Lead lead;
    if (first.scene) {
        lead.step = options.isVirtual ? first.scene->nextStep()
                                      : first.sound->step(first.scene->numSteps());
        lead.seed = first.plan.seed + beginnings;
        if (options.loop && isVoiceOver()) {
            lead.flags |= Lead::ANEW;
        }
    }
    if (options.frames != 0 && frame > options.frames) {
        lead.flags |= Lead::QUIT;
    }
    return lead;
}

bool Leader::isVoiceOver() const
{
    return options.isVirtual ? first.scene->isVoiceOver() : first.sound->isOver();
}

void Leader::shown(bool beginsScene)
{
    if (!beginsScene) {
        return;
    }
    ++beginnings;
    if (first.sound) {
        first.sound->begin();
    }
}

} // namespace wall
