#include <GL/glew.h>

#include "StagePlay.h"

#include "Environment.h"
#include "MoCap.h"
#include "Sensor.h"
#include "SensorRep.h"

#include <FL/Fl.H>
#include <algorithm>
#include <set>

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
/// \param kept  lists that are not
void deleteGLObjects(const std::set<GLuint>& kept)
{
    forEachName(
        glGenLists(1), [](GLuint name) { return glIsList(name); },
        [&kept](GLuint name) {
            if (!kept.contains(name)) {
                glDeleteLists(name, 1);
            }
        });
    GLuint newest = 0;
    glGenTextures(1, &newest);
    forEachName(
        newest, [](GLuint name) { return glIsTexture(name); },
        [](GLuint name) { glDeleteTextures(1, &name); });
    glDeleteTextures(1, &newest); // which is none before it is bound
}

} // namespace

void StagePlay::begin(int width, int height, unsigned seed)
{
    if (scene != nullptr) {
        end();
    }
    const RandomNumbers::Use use(numbers);
    scene = std::make_unique<Stage>(width, height, seed, clockVoice);
    // The clock of a program with a sound of its own would set the step to 0.
    Fl::remove_timeout(dataTimer, scene->recording);
}

void StagePlay::end()
{
    if (isDrawn && bodies.empty()) {
        noteBodies();
    }
    scene->freeNodes();
    scene.reset();
    isDrawn = false;
    std::set<GLuint> kept;
    for (const Body& body : bodies) {
        kept.insert(body.square);
        kept.insert(body.frames.begin(), body.frames.end());
    }
    deleteGLObjects(kept);
}

void StagePlay::noteBodies()
{
    for (Node* node : scene->water->sensorList) {
        const SensorRep& rep = *static_cast<Sensor*>(node)->rep;
        bodies.push_back({rep.sensorGeom, {rep.baseAnim, rep.baseAnim + rep.baseAnimFrames}});
    }
}

/// To be called where the first draw would make them.
void StagePlay::giveBodies()
{
    for (std::size_t k = 0; k < bodies.size(); ++k) {
        const Body& body = bodies[k];
        static_cast<Sensor*>(scene->water->sensorList[k])
            ->rep->initializeWith(body.square, body.frames.data());
    }
}

void StagePlay::give(const SceneInput& input)
{
    const RandomNumbers::Use use(numbers);
    const CurrentEvent restored;
    ::give(scene->window, input);
}

void StagePlay::update(int step)
{
    const RandomNumbers::Use use(numbers);
    scene->update(step);
}

void StagePlay::draw()
{
    const RandomNumbers::Use use(numbers);
    if (!isDrawn) {
        giveBodies();
    }
    scene->draw();
    isDrawn = true;
}

StateHash StagePlay::hash() const
{
    const RandomNumbers::Use use(numbers);
    return scene->hash();
}
