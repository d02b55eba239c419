// Drawing one frame of the running scene.

#include <GL/glew.h>

#include "Child.h"
#include "Context.h"
#include "FlatFrame.h"
#include "FrozenScene.h"
#include "Job.h"
#include "OsgFrame.h"

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

namespace {

constexpr int FRAMES = 10; // in one operation
constexpr std::size_t BYTES = std::size_t{740} * 740 * 4;

/// One way to draw the scene, in the context that it needs.
struct Painter {
    const char* name;
    std::function<void()> prepare;
    std::function<void()> draw;
};

struct Scene {
    std::vector<Painter> painters;

    Scene()
    {
        const auto own = bench::makeContext();
        static FrozenScene frozen; // as its nodes, until the program ends
        const auto osgs = bench::makeContext();
        static OsgFrame osg(frozen);
        painters = {{"kelpix",
                     [own] {
                         own();
                         frozen.restore();
                     },
                     [] { frozen.draw(); }},
                    {"limit", own, [] { drawFlat(frozen); }},
                    {"OpenSceneGraph", osgs, [] { osg.draw(); }}};
    }
};

std::vector<unsigned char> pictureBy(const Painter& painter)
{
    painter.prepare();
    painter.draw();
    std::vector<unsigned char> pixels(BYTES);
    glReadPixels(0, 0, 740, 740, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    return pixels;
}

/// The part of the bytes in which two pictures differ visibly.
double difference(const std::vector<unsigned char>& a, const std::vector<unsigned char>& b)
{
    std::size_t different = 0;
    for (std::size_t i = 0; i < BYTES; ++i) {
        different += std::abs(a[i] - b[i]) > 8;
    }
    return static_cast<double>(different) / static_cast<double>(BYTES);
}

double cost(const Painter& painter, double clock())
{
    double seconds = 0;
    for (int i = 0; i < FRAMES; ++i) {
        painter.prepare();
        const double start = clock();
        painter.draw();
        glFinish();
        seconds += clock() - start;
    }
    return seconds;
}

bench::Job frame(const char* name, double clock())
{
    static const Scene scene;
    bench::Job job = {name, "frame", FRAMES, {}};
    const auto own = pictureBy(scene.painters.front());
    for (const Painter& painter : scene.painters) {
        const double different = difference(pictureBy(painter), own);
        if (different > 0.01) {
            std::printf("%s draws another picture: %.1f %% of it\n", painter.name, 100 * different);
            std::exit(1);
        }
        bench::Way way = {.name = painter.name,
                          .measure = [&painter, clock] { return cost(painter, clock); }};
        if (&painter != &scene.painters.back()) { // whose arithmetic is its own
            way.result = [&painter] { return bench::hashOf(pictureBy(painter).data(), BYTES); };
        }
        job.ways.push_back(way);
    }
    return job;
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv,
                      {[] { return frame("frame, CPU of the process", bench::processClock); },
                       [] { return frame("frame, CPU of the main thread", bench::threadClock); }});
}
