#include "Sample.h"

#include "Boid.h"
#include "Boider.h"
#include "Environment.h"
#include "Sensor.h"
#include "SensorRep.h"
#include "Texture.h"

#include <malloc.h>

namespace soak {

namespace {

constexpr std::size_t CHARACTERS = 128; // of the window's font, a display list each

void countBoid(const Boid* boid, Sample& sample)
{
    (boid->type == BOID_FISH ? sample.fish : sample.bubbles) += 1;
    sample.listsOfNodes += boid->boider->initialized ? 1 : 0;
}

/// The display lists of a figure: the square, and the frames of the body.
std::size_t listsOf(const SensorRep* rep)
{
    return rep->initialized ? 1 + static_cast<std::size_t>(rep->baseAnimFrames) : 0;
}

} // namespace

Sample countNodes(Environment* water)
{
    Sample sample;
    sample.listsOfNodes = CHARACTERS + (water->initialized ? 2 : 0); // the plane, the grid lines
    for (const Texture* texture : {water->tex, water->fishTex, water->bubbleTex}) {
        sample.listsOfNodes += texture->loaded ? 1 : 0; // a display list uploads a texture
    }
    for (Node* child : water->children) {
        if (child->getType() == RTTI_PARTICLE) {
            countBoid(static_cast<Boid*>(child), sample);
        }
    }
    for (Node* sensor : water->sensorList) {
        sample.listsOfNodes += listsOf(static_cast<Sensor*>(sensor)->rep);
    }
    const float* extents = water->bucketIndex.getExtents();
    const auto cells = static_cast<std::size_t>(extents[2] * extents[3]);
    for (std::size_t i = 0; i < cells; ++i) {
        sample.slots += water->bucketIndex.index[i]->boidList.size();
    }
    return sample;
}

std::size_t heapInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

} // namespace soak
