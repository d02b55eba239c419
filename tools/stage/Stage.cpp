#include "Stage.h"

#include "Environment.h"
#include "MoCap.h"
#include "Sensor.h"

#include <cstdlib>
#include <vector>

namespace {

/// Adds the water as a process does that has just started: its random numbers are those after
/// srand(\p seed), and no frame has been drawn yet.
Environment* addWater(UnderwaterScene& scene, unsigned seed)
{
    static auto* const all = new std::vector<Environment*>; // they stay reachable
    emitt = 0;
    std::srand(seed);
    scene.addWater(nullptr);
    all->push_back(scene.water);
    return scene.water;
}

} // namespace

Stage::Stage(int width, int height, unsigned seed, Voice voice)
    : water(addWater(scene, seed)),
      recording(static_cast<Sensor*>(water->sensorList.front())->mocap),
      window(1, 0, 0, width, height), clockVoice(voice)
{
    scene.showIn(window, font, nullptr);
}

Stage::~Stage()
{
    // Not by font_data::clean, which needs the GL context: it may be gone by now.
    delete[] font.textures;
}

void Stage::update(int step)
{
    recording->step = step;
    scene.graph.update();
    ++updates;
}

int Stage::nextStep() const
{
    return MoCap::stepAt(recording->numSteps, voicePosition(clockVoice, nextTick()));
}

bool Stage::isVoiceOver() const
{
    return nextTick() * clockVoice.rate / TICKS_PER_SECOND >= clockVoice.samples;
}

float Stage::voicePosition(Voice voice, std::int64_t tick)
{
    const std::int64_t played = tick * voice.rate / TICKS_PER_SECOND;
    if (played >= voice.samples) {
        return 0;
    }
    return static_cast<float>(played) / static_cast<float>(voice.samples);
}
