// Drawing one frame of the running scene.

#include <GL/glew.h>

#include "CallTape.h"
#include "Child.h"
#include "Context.h"
#include "FlatFrame.h"
#include "FrozenScene.h"
#include "Job.h"
#include "Painter.h"
#include "Peers.h"

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

namespace {

constexpr int FRAMES = 10; // in one operation
constexpr std::size_t BYTES = std::size_t{740} * 740 * 4;

struct Scene {
    std::vector<Painter> painters;
    std::size_t exact = 0; ///< so many of them, the first ones, draw the same pixels to the bit

    Scene()
    {
        const auto own = bench::makeContext();
        static FrozenScene frozen; // as its nodes, until the program ends
        const auto restore = [own] {
            own();
            frozen.restore();
        };
        restore();
        CallTape::record([] { frozen.draw(); });
        painters = {{"kelpix", restore, [] { frozen.draw(); }},
                    {"same calls", own, CallTape::play},
                    {"lower bound", own, [] { drawFlat(frozen); }}};
        exact = painters.size();
        const std::vector<Painter> more = bench::peers::painters(frozen);
        painters.insert(painters.end(), more.begin(), more.end());
    }
};

std::vector<unsigned char> imageBy(const Painter& painter)
{
    painter.prepare();
    painter.draw();
    std::vector<unsigned char> pixels(BYTES);
    glReadPixels(0, 0, 740, 740, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    return pixels;
}

/// The part of the bytes in which two images differ visibly.
double difference(const std::vector<unsigned char>& a, const std::vector<unsigned char>& b)
{
    std::size_t different = 0;
    for (std::size_t i = 0; i < BYTES; ++i) {
        different += static_cast<std::size_t>(std::abs(a[i] - b[i]) > 8);
    }
    return static_cast<double>(different) / static_cast<double>(BYTES);
}

double cost(const Painter& painter, double clock())
{
    // Of the frame before, the caches hold what the last contender has drawn.
    painter.prepare();
    painter.draw();
    glFinish();
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
    const auto own = imageBy(scene.painters.front());
    for (const Painter& painter : scene.painters) {
        const double different = difference(imageBy(painter), own);
        if (different > 0.01) {
            std::printf("%s draws another image: %.1f %% of it\n", painter.name, 100 * different);
            std::exit(1);
        }
        bench::Contender contender = {
            .name = painter.name, .measure = [&painter, clock] { return cost(painter, clock); }};
        if (job.contenders.size() < scene.exact) {
            contender.result = [&painter] { return bench::hashOf(imageBy(painter).data(), BYTES); };
        }
        job.contenders.push_back(contender);
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
