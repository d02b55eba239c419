#include "Leader.h"

#include "LedFigures.h"
#include "Options.h"
#include "Rank.h"

#include <chrono>
#include <thread>

namespace wall {

Leader::Leader(const Options& given, Rank& rank)
    : options(given), first(rank), pace(rank.plan.layout.rate), seed(rank.plan.seed)
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
        if (options.loop && isVoiceOver()) {
            lead.flags |= Lead::ANEW;
            steering = {};
        }
        if (first.figures) {
            followMessages(lead);
        }
        lead.seed = seed + beginnings;
    }
    if (options.frames != 0 && frame > options.frames) {
        lead.flags |= Lead::QUIT;
    }
    return lead;
}

/// Decides where the figures are, and whether the scene begins anew because a message asks for it.
void Leader::followMessages(Lead& lead)
{
    const FigureInput::Renewal renewal = first.figures->take(steering);
    if (renewal.asked) {
        lead.flags |= Lead::ANEW;
        const unsigned present = seed + beginnings - (beginnings > 0 ? 1 : 0);
        seed = renewal.seed.value_or(present) - beginnings;
    }
    isSteeringNew = (lead.flags & Lead::ANEW) != 0;
    if (isSteeringNew) {
        setPoses(lead, {});
        return;
    }
    SteeredRecording& recording = first.scene->recording();
    lead.step = recording.nearestStep(lead.step);
    setPoses(lead, steering.next(recording, lead.step, first.scene->view()));
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
    if (beginnings > 1 && !isSteeringNew) {
        steering = {};
    }
    if (first.sound) {
        first.sound->begin();
    }
}

} // namespace wall
