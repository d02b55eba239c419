#include "TestWorld.h"

#include "Boid.h"
#include "Sensor.h"
#include "Texture.h"

#include <cstdlib>
#include <sstream>

reference::Recording farAwayRecording()
{
    const reference::Triple far = {1000.0f, 1000.0f, 0.0f};
    return {{{far}, {far}, {far}}};
}

SceneFolder::SceneFolder(const reference::Recording& recording)
{
    std::ostringstream figures;
    figures.precision(9); // brings every float back as it was
    const char* between = "";
    for (std::size_t step = 0; step < recording[0].size(); ++step) {
        figures << between << step;
        for (const std::vector<reference::Triple>& series : recording) {
            const reference::Triple& p = series[step];
            figures << ' ' << p.x.value << ' ' << p.y.value << ' ' << p.z.value << " 0 0 0";
        }
        figures << " 0 0 0 0 0 0";
        between = "\n"; // not after the last record: the reader would look for one more
    }
    std::filesystem::create_directory("data");
    TempDirectory::write("data/mocap.txt", "MOCAP\n1 3\ndata/figures.txt\n");
    TempDirectory::write("data/figures.txt", figures.str());
}

Environment* newWorld(unsigned seed, const reference::Recording& recording)
{
    static auto* const worlds = new std::vector<Environment*>;
    const SceneFolder folder(recording);
    emitt = 0;
    std::srand(seed);
    testing::internal::CaptureStdout();
    worlds->push_back(new Environment(nullptr));
    testing::internal::GetCapturedStdout();
    return worlds->back();
}

void skipTextures(Environment* world)
{
    for (Texture* texture : {world->tex, world->fishTex, world->bubbleTex}) {
        texture->loaded = true;
    }
}

std::vector<Boid*> boidsOf(Environment* world)
{
    std::vector<Boid*> boids;
    for (Node* child : *world->getChildList()) {
        if (child->getType() == RTTI_PARTICLE) {
            boids.push_back(static_cast<Boid*>(child));
        }
    }
    return boids;
}

Sensor* sensorOf(Environment* world, std::size_t number)
{
    return static_cast<Sensor*>(world->sensorList.at(number));
}

MoCap* recordingOf(Environment* world)
{
    return sensorOf(world, 0)->mocap;
}
