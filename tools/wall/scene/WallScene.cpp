#include <GL/glew.h>

#include "WallScene.h"

#include "Environment.h"
#include "FitProjection.h"
#include "MoCap.h"
#include "SceneInput.h"
#include "Texture.h"

#include <FL/Fl.H>
#include <algorithm>
#include <stdexcept>
#include <string>

namespace wall {

namespace {

/// Puts what FLTK says of the current event back in the end: a drag goes on to be one with the key
/// that somebody holds.
class CurrentEvent {
public:
    CurrentEvent() = default;
    CurrentEvent(const CurrentEvent&) = delete;
    CurrentEvent& operator=(const CurrentEvent&) = delete;
    ~CurrentEvent()
    {
        Fl::e_number = number;
        Fl::e_x = x;
        Fl::e_y = y;
        Fl::e_x_root = xRoot;
        Fl::e_y_root = yRoot;
        Fl::e_dx = dx;
        Fl::e_dy = dy;
        Fl::e_keysym = key;
        Fl::e_original_keysym = originalKey;
    }

private:
    int number = Fl::e_number;
    int x = Fl::e_x;
    int y = Fl::e_y;
    int xRoot = Fl::e_x_root;
    int yRoot = Fl::e_y_root;
    int dx = Fl::e_dx;
    int dy = Fl::e_dy;
    int key = Fl::e_keysym;
    int originalKey = Fl::e_original_keysym;
};

/// Calls \p work for each object of a kind, of which GL keeps no list: names are given from 1
/// upwards, with gaps where objects were deleted.
/// \param newest  the name that was given last, which may fill a gap
template<typename Is, typename Work>
void forEachName(GLuint newest, Is is, Work work)
{
    constexpr GLuint GAP = 4096; // longer than any between the scene's objects
    GLuint last = newest + GAP;
    for (GLuint name = 1; name <= last; ++name) {
        if (is(name) != GL_FALSE) {
            work(name);
            last = std::max(last, name + GAP);
        }
    }
}

/// Deletes all display lists and textures of the current GL context.
void deleteGLObjects()
{
    forEachName(
        glGenLists(1), [](GLuint name) { return glIsList(name); },
        [](GLuint name) { glDeleteLists(name, 1); });
    GLuint newest = 0;
    glGenTextures(1, &newest);
    forEachName(
        newest, [](GLuint name) { return glIsTexture(name); },
        [](GLuint name) { glDeleteTextures(1, &name); });
    glDeleteTextures(1, &newest); // which is none before it is bound
}

/// Frees the pixels of a scene that is not drawn any more. Its nodes live until the process ends.
void freePixels(const Environment& water)
{
    for (Texture* const texture : {water.tex, water.fishTex, water.bubbleTex}) {
        if (texture->getSource() != nullptr) {
            texture->getSource()->freeBuffer();
        }
    }
}

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
    : wall(layout), part(tile), clockVoice(voice), ramps(tile)
{
}

void WallScene::begin(unsigned seed)
{
    end();
    const RandomNumbers::Use use(numbers);
    stage = std::make_unique<Stage>(wall.width, wall.height, seed, clockVoice);
    // The clock of a program with a sound of its own would set the step to 0.
    Fl::remove_timeout(dataTimer, stage->recording);
}

void WallScene::end()
{
    if (stage == nullptr) {
        return;
    }
    const MoCap* const recording = stage->recording;
    const Environment& water = *stage->water;
    stage.reset();
    delete recording;
    freePixels(water);
    ramps.clean();
    deleteGLObjects();
}

void WallScene::give(const InputEvent& event)
{
    const RandomNumbers::Use use(numbers);
    const CurrentEvent restored;
    ::give(stage->window, {event.kind, event.x, event.y, event.key, event.wheel});
}

void WallScene::update(int step)
{
    const RandomNumbers::Use use(numbers);
    stage->update(step);
}

void WallScene::draw()
{
    const RandomNumbers::Use use(numbers);
    if (!stage->window.valid()) {
        stage->window.initGL();
        scaleProjection(wall.projectionScale());
    }
    if (part.drawn != PixelRect{0, 0, part.desktop.w, part.desktop.h}) {
        clearWindow();
    }
    glViewport(part.viewport.x, part.viewport.y, part.viewport.w, part.viewport.h);
    glScissor(part.drawn.x, part.drawn.y, part.drawn.w, part.drawn.h);
    stage->draw();
    ramps.draw();
    glViewport(0, 0, wall.width, wall.height);
}

int WallScene::numSteps() const
{
    return stage->recording->numSteps;
}

StateHash WallScene::hash() const
{
    const RandomNumbers::Use use(numbers);
    return stage->hash();
}

State WallScene::state() const
{
    const StateHash hash = this->hash();
    const auto nodes = static_cast<std::uint64_t>(stage->scene.graph.node_count);
    const std::uint64_t children = stage->water->children.size();
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
