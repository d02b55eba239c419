#include "Stage.h"

#include "Boid.h"
#include "Environment.h"
#include "ImageJPEG.h"
#include "ImagePNG.h"
#include "MoCap.h"
#include "PivotNode.h"
#include "RootNode.h"
#include "Sensor.h"
#include "SensorRep.h"
#include "Shapes.h"
#include "Texture.h"

#include <cstdlib>
#include <memory>
#include <vector>

namespace {

/// Of all stages whose nodes live: these stay reachable.
std::vector<Environment*>& environments()
{
    static auto* const all = new std::vector<Environment*>;
    return *all;
}

/// Adds the water as a process does that has just started: its random numbers are those after
/// srand(\p seed), and no frame has been drawn yet.
Environment* addWater(UnderwaterScene& scene, unsigned seed)
{
    emitt = 0;
    std::srand(seed);
    scene.addWater(nullptr);
    environments().push_back(scene.water);
    return scene.water;
}

/// Frees an object, which is of this class and not of a derived one: destructors are not virtual.
template<typename Class>
void free(Class* object)
{
    if (object != nullptr) {
        std::destroy_at(object);
        ::operator delete(static_cast<void*>(object));
    }
}

void freeTexture(Texture* texture)
{
    switch (texture->imageFormat) {
    case IMAGE_JPEG:
        free(static_cast<ImageJPEG*>(texture->data));
        break;
    case IMAGE_PNG:
        free(static_cast<ImagePNG*>(texture->data));
        break;
    }
    delete texture;
}

/// Frees a boid or a sensor, with its body.
void freeChild(Node* child)
{
    if (child->getType() == RTTI_PARTICLE) {
        child->cleanup();
        free(static_cast<Boid*>(child));
    } else {
        auto* sensor = static_cast<Sensor*>(child);
        delete sensor->rep;
        free(sensor);
    }
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

void Stage::freeNodes()
{
    for (Node* child : water->children) {
        freeChild(child);
    }
    delete water->geom;
    for (Texture* texture : {water->tex, water->fishTex, water->bubbleTex}) {
        freeTexture(texture);
    }
    delete recording;
    std::erase(environments(), water);
    free(water);
    free(scene.pivot);
    free(scene.root);
    scene.graph = SceneGraph();
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
