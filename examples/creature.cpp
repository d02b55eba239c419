// creature: three figures follow a recording in step with a voice, and a creature eases towards
// their centre.

#include <GL/glew.h>

#include "AppManager.h"
#include "Creature.h"
#include "MoCap.h"
#include "OggSound.h"
#include "PivotNode.h"
#include "RootNode.h"
#include "SceneGraph.h"
#include "Sensor.h"
#include "Shapes.h"
#include "Texture.h"
#include "Window.h"

#include <AL/alc.h>
#include <FL/Fl.H>
#include <cstdio>
#include <filesystem>

namespace {

/// A picture on the unit square, 0 to 1 in x and y.
class Water final : public Node {
public:
    int cull() override
    {
        if (plane.list == 0) {
            Shapes::plane(&plane, 1);
        }
        draw();
        return 1;
    }

    void draw() override
    {
        if (!picture.isLoaded()) {
            picture.load(); // reads the file; needs the GL context that is current here
        }
        glEnable(GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, *picture.getId());
        glColor3f(0.5f, 0.5f, 0.5f); // texels are multiplied by the colour
        glCallList(plane.list);
        glBindTexture(GL_TEXTURE_2D, 0);
        glDisable(GL_TEXTURE_2D);
    }

    void doupdate() override {}
    void drawBBox() override {}
    RTTI_NODE_TYPE getType() const override { return RTTI_USER9; }
    void userEvent(UserEvent*) override {}
    void addTexture(Texture*) override {}
    Texture* getTexture() override { return &picture; }
    void computeBBox() override {}
    BBox* getBBox() override { return nullptr; }
    void addGeometry(Geometry*) override {}
    Geometry* getGeometry() override { return &plane; }
    void print() override {}
    void cleanup() override {}

private:
    Texture picture{"data/underwater.jpg", IMAGE_JPEG};
    Geometry plane{};
};

/// Shows the media in the current folder until the window is closed.
void show()
{
    OggSound voice;
    voice.load("sound/magpie_vocal.ogg");
    MoCap recording;
    recording.sound = &voice;
    recording.read("data/mocap.txt");

    // Figures and textures keep what they have made until the process ends, so they are static.
    static Water water;
    static Sensor sensors[3];
    static Creature creature;
    std::vector<Node*> sensorList;
    for (int k = 0; k < 3; ++k) {
        sensors[k].mocap = &recording;
        sensors[k].sensorId = k;
        sensorList.push_back(&sensors[k]);
        water.attachChild(&sensors[k]);
    }
    creature.sensorList = &sensorList;
    creature.translate(0.5f, 0, 0);
    water.attachChild(&creature); // beside the sensors: it moves in the frame in which they move

    RootNode root;
    PivotNode pivot;
    root.attachChild(&pivot);
    pivot.attachChild(&water);
    water.scale(1.2f, 1.2f, 1);
    water.translate(-0.5f, -0.5f, 0); // the newest operation acts first: centred, then scaled
    SceneGraph scene;
    scene.setRootNode(&root);
    scene.setPivotNode(&pivot);

    Window window(1, 0, 0, 740, 740);
    window.end();
    window.getRender()->getCamera()->setProjType(1);
    window.getRender()->setSG(&scene);
    AppManager manager;
    manager.addWindow(&window);
    manager.addTimeouts(40, 40);
    Fl::add_timeout(0, dataTimer, &recording); // follows the voice, 90 times a second
    voice.play();
    while (window.shown()) {
        Fl::wait();
    }
}

} // namespace

int main(int argc, char* argv[])
{
    std::puts("creature: a creature eases towards three dancing figures\n"
              "creature FOLDER plays another folder's data/ and sound/\n"
              "  wheel  zooms\n"
              "  drag   with v moves, with z, x or c turns the scene (button first, then key)\n"
              "  q      ends");
    std::error_code error;
    const char* folder = argc > 1 ? argv[1] : KELPIX_SCENE;
    std::filesystem::current_path(folder, error);
    if (error) {
        std::fprintf(stderr, "creature: %s: %s\n", folder, error.message().c_str());
        return 1;
    }
    OggSound::initAL(&argc, argv);
    if (!alcGetCurrentContext()) {
        std::fputs("creature: no sound device, so the figures rest. ALSOFT_DRIVERS=null plays to "
                   "nowhere and lets them move.\n",
                   stderr);
    }
    show();
    OggSound::exitAL();
    return 0;
}
