#include <GL/glew.h>

#include "WallScene.h"

#include "Environment.h"
#include "FitProjection.h"
#include "MoCap.h"
#include "PivotNode.h"
#include "RootNode.h"

#include <stdexcept>
#include <string>

namespace wall {

namespace {

/// Makes the whole window black. The scene clears only what the scissor leaves of it, and what a
/// driver has in a new window or after a swap may be anything.
void clearWindow()
{
    glPushAttrib(GL_COLOR_BUFFER_BIT | GL_SCISSOR_BIT);
    glDisable(GL_SCISSOR_TEST);
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glPopAttrib();
}

} // namespace

WallScene::WallScene(const WallLayout& layout, const WallTile& tile, Stage::Voice voice)
    : wall(layout), part(tile), play(voice), ramps(tile)
{
}

void WallScene::begin(unsigned seed)
{
    ramps.clean();
    steered.reset();
    play.begin(wall.width, wall.height, seed);
}

void WallScene::give(const InputEvent& event)
{
    play.give({event.kind, event.x, event.y, event.key, event.wheel});
}

void WallScene::update(int step, const std::optional<Poses>& poses)
{
    if (poses) {
        step = recording().nearestStep(step);
        recording().write(step, *poses);
    }
    play.update(step);
}

SteeredRecording& WallScene::recording()
{
    if (!steered) {
        steered.emplace(*play.stage().recording);
    }
    return *steered;
}

WaterView WallScene::view() const
{
    const Stage& stage = play.stage();
    return {stage.scene.root->transformmat, stage.scene.pivot->transformmat,
            stage.water->transformmat, static_cast<double>(wall.width) / wall.height,
            static_cast<double>(wall.projectionScale())};
}

void WallScene::draw()
{
    Window& window = play.stage().window;
    if (!window.valid()) {
        const auto use = play.useNumbers();
        window.initGL();
        scaleProjection(wall.projectionScale());
    }
    if (part.drawn != PixelRect{0, 0, part.desktop.w, part.desktop.h}) {
        clearWindow();
    }
    glViewport(part.viewport.x, part.viewport.y, part.viewport.w, part.viewport.h);
    glScissor(part.drawn.x, part.drawn.y, part.drawn.w, part.drawn.h);
    play.draw();
    ramps.draw();
    glViewport(0, 0, wall.width, wall.height);
}

int WallScene::numSteps() const
{
    return play.stage().recording->numSteps;
}

State WallScene::state() const
{
    const StateHash hash = play.hash();
    const Stage& stage = play.stage();
    const auto nodes = static_cast<std::uint64_t>(stage.scene.graph.node_count);
    const std::uint64_t children = stage.water->children.size();
    return {hash.random, hash.boids, hash.figures, hash.bodies, hash.view, children << 32 | nodes};
}

void checkLimits(const WallTile& tile)
{
    GLLimits limits;
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, limits.viewport.data());
    glGetFloatv(GL_VIEWPORT_BOUNDS_RANGE, limits.bounds.data());
    if (glGetError() != GL_NO_ERROR) {
        limits.bounds = {}; // an old OpenGL without that limit
    }
    if (const auto problem = beyondLimits(tile, limits)) {
        throw std::runtime_error(*problem);
    }
}

} // namespace wall
