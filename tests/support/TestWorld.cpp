#include "TestWorld.h"

#include "Boid.h"
#include "Sensor.h"
#include "Texture.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <unistd.h>

reference::Recording farAwayRecording()
{
    const reference::Triple far = {1000.0f, 1000.0f, 0.0f};
    return {{{far}, {far}, {far}}};
}

SceneFolder::SceneFolder(const reference::Recording& recording)
    : before(std::filesystem::current_path())
{
    static int number = 0;
    folder = std::filesystem::path(testing::TempDir()) /
             ("kelpix-scene-" + std::to_string(getpid()) + "-" + std::to_string(number++));
    std::filesystem::create_directories(folder / "data");
    std::filesystem::current_path(folder);

    std::FILE* const index = std::fopen("data/mocap.txt", "w");
    std::fputs("MOCAP\n1 3\ndata/figures.txt\n", index);
    std::fclose(index);

    std::FILE* const figures = std::fopen("data/figures.txt", "w");
    for (std::size_t step = 0; step < recording[0].size(); ++step) {
        std::fprintf(figures, "%zu", step);
        for (const std::vector<reference::Triple>& series : recording) {
            // Nine digits bring every float back as it was.
            const reference::Triple& p = series[step];
            std::fprintf(figures, " %.9g %.9g %.9g 0 0 0", p.x.wide(), p.y.wide(), p.z.wide());
        }
        // No white space after the last word: the reader would take it for one more record.
        std::fputs(step + 1 < recording[0].size() ? " 0 0 0 0 0 0\n" : " 0 0 0 0 0 0", figures);
    }
    std::fclose(figures);
}

SceneFolder::~SceneFolder()
{
    std::filesystem::current_path(before);
    std::filesystem::remove_all(folder);
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
