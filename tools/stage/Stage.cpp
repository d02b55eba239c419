#include "Stage.h"

#include "Environment.h"
#include "MoCap.h"
#include "PivotNode.h"
#include "RootNode.h"
#include "Sensor.h"

#include <cstdlib>
#include <vector>

namespace {

/// A seeded environment: the random numbers go into its fish, in the order of their making. The
/// process may have played another scene before.
Environment* newEnvironment(unsigned seed)
{
    static auto* const all = new std::vector<Environment*>; // they stay reachable
    emitt = 0;
    std::srand(seed);
    all->push_back(new Environment(nullptr));
    return all->back();
}

} // namespace

Stage::Stage(int width, int height, unsigned seed, Voice voice)
    : window(1, 0, 0, width, height), water(newEnvironment(seed)),
      recording(static_cast<Sensor*>(water->sensorList.front())->mocap), clockVoice(voice)
{
    auto* root = new RootNode;
    root->setName("root");
    auto* pivot = new PivotNode;
    pivot->setName("pivot");
    water->scale(1.2f, 1.2f, 1.0f);
    water->translate(-0.5f, -0.5f, 0.0f);
    water->setName("water");
    root->attachChild(pivot);
    pivot->attachChild(water);
    graph.setRootNode(root);
    graph.setPivotNode(pivot);

    window.getRender()->getCamera()->setProjType(1);
    window.setOffset(0, 0);
    window.end();
    window.setFont(&font);
    window.getRender()->setSG(&graph);
}

Stage::~Stage()
{
    // Not by font_data::clean: the context may be gone by now.
    delete[] font.textures;
}

void Stage::update()
{
    const std::int64_t tick = updates * TICKS_PER_SECOND / STEPS_PER_SECOND;
    recording->step = MoCap::stepAt(recording->numSteps, voicePosition(clockVoice, tick));
    graph.update();
    ++updates;
}

float Stage::voicePosition(Voice voice, std::int64_t tick)
{
    const std::int64_t played = tick * voice.rate / TICKS_PER_SECOND;
    if (played >= voice.samples) {
        return 0;
    }
    return static_cast<float>(played) / static_cast<float>(voice.samples);
}
