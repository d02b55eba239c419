// creature: three figures follow a recording in step with a voice, and a creature moves towards
// their center.

#include "Creature.h"
#include "MoCap.h"
#include "OggSound.h"
#include "PlainNode.h"
#include "SceneWindow.h"
#include "Sensor.h"
#include "Shapes.h"
#include "Texture.h"
#include "Usage.h"

#include <AL/alc.h>
#include <FL/Fl.H>
#include <cstdio>
#include <filesystem>

namespace {

/// A texture on the unit square, 0 to 1 in x and y.
class Water final : public PlainNode {
public:
    int cull() override
    {
        if (plane.list == 0) {
            //! [shape]
            Shapes::plane(&plane, 1);
            //! [shape]
        }
        draw();
        return 1;
    }

    void draw() override
    {
        //! [texture]
        if (!texture.isLoaded()) {
            texture.load(); // reads the file; needs the GL context that is current here
        }
        glEnable(GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, *texture.getId());
        glColor3f(0.5f, 0.5f, 0.5f); // texels are multiplied by the color
        glCallList(plane.list);
        glBindTexture(GL_TEXTURE_2D, 0);
        glDisable(GL_TEXTURE_2D);
        //! [texture]
    }

private:
    Texture texture{"data/underwater.jpg", IMAGE_JPEG};
    Geometry plane{};
};

/// Shows the media in the current folder until the window is closed.
void show()
{
    //! [recording]
    OggSound voice;
    voice.load("sound/magpie_vocal.ogg");
    MoCap recording;
    recording.sound = &voice;
    recording.read("data/mocap.txt");
    //! [recording]

    // Figures and textures never free their display lists and textures, so they are static.
    static Water water;
    static Sensor sensors[3];
    static Creature creature;
    //! [sensors]
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
    //! [sensors]

    water.scale(1.2f, 1.2f, 1);
    water.translate(-0.5f, -0.5f, 0); // the newest operation acts first: centered, then scaled
    SceneWindow window(740, 740);
    window.pivot.attachChild(&water);
    //! [clock]
    Fl::add_timeout(0, dataTimer, &recording); // follows the voice, 90 times a second
    voice.play();
    //! [clock]
    window.run();
}

} // namespace

int main(int argc, char* argv[])
{
    constexpr const char* USAGE = "usage: creature [FOLDER]\n"
                                  "Plays the generated media, or a folder's data/ and sound/.\n";
    if (const auto status = answerUsage(argc, argv, {0, 1}, USAGE)) {
        return *status;
    }
    std::puts("creature: a creature eases towards three dancing figures\n"
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
    if (alcGetCurrentContext() == nullptr) {
        std::fputs("creature: no sound device, so the figures rest. ALSOFT_DRIVERS=null plays to "
                   "nowhere and lets them move.\n",
                   stderr);
    }
    show();
    OggSound::exitAL();
    return 0;
}
