// The draw traversal of the scene's 209 nodes, on an OpenGL that only counts.

#include "Job.h"

#include "Boid.h"
#include "Environment.h"
#include "Sensor.h"
#include "SensorRep.h"
#include "Stage.h"
#include "Texture.h"

#include <GL/gl.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

constexpr int NODES = 209; // root, pivot, water, fish with their sprites, figures with their bodies

/// A scene of which everything is in view.
std::shared_ptr<Stage> newStage()
{
    auto stage = std::make_shared<Stage>(740, 740, 1, Stage::Voice{0, 1});
    for (Texture* texture : {stage->water->tex, stage->water->fishTex, stage->water->bubbleTex}) {
        texture->loaded = true;
    }
    for (Node* child : stage->water->children) {
        float* place = child->glTransform() + 12;
        std::for_each(place, place + 2, [](float& x) { x = std::clamp(x, 0.1f, 0.9f); });
    }
    stage->draw();
    if (stage->scene.graph.node_count != NODES) {
        std::printf("%d nodes are in view, not %d\n", stage->scene.graph.node_count, NODES);
        std::exit(1);
    }
    return stage;
}

/// What GL is asked at each node at least: to enter its frame, note it, and leave it.
void enterAndLeave(float* transform, float* world)
{
    glPushMatrix();
    glPushMatrix();
    glMultMatrixf(transform);
    glGetFloatv(GL_MODELVIEW_MATRIX, world);
    glPopMatrix();
    glPopMatrix();
}

bench::Job traversal()
{
    const auto stage = newStage();
    const auto matrices = std::make_shared<std::vector<float>>(32);
    const auto noBubbles = [] { emitt = 0; };
    return {"traversal of 209 nodes",
            "node",
            NODES,
            {{"kelpix", [stage] { stage->scene.graph.draw(); }, noBubbles},
             {"lower bound", [matrices] {
                  for (int i = 0; i < NODES; ++i) {
                      enterAndLeave(matrices->data(), matrices->data() + 16);
                  }
              }}}};
}

} // namespace

int main(int argc, char** argv)
{
    return bench::run(argc, argv, {traversal});
}
