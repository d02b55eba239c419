// kelpix-sound-check: status 0 when there is a sound device for the scene, 1 when there is none.

#include "OggSound.h"

#include <AL/alc.h>

int main(int argc, char* argv[])
{
    OggSound::initAL(&argc, argv);
    if (alcGetCurrentContext() == nullptr) {
        return 1;
    }
    OggSound::exitAL();
    return 0;
}
