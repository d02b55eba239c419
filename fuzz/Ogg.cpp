/// The input is an Ogg Vorbis file.

#include "Harness.h"
#include "OggSound.h"

#include <AL/al.h>

// A device that plays nothing, but has names for buffers and sources. All other calls find no
// device.
extern "C" {
ALboolean alutInit(int*, char**)
{
    return AL_TRUE;
}
ALboolean alutExit()
{
    return AL_TRUE;
}
void alGenBuffers(ALsizei count, ALuint* names)
{
    std::fill_n(names, count, 1u);
}
void alGenSources(ALsizei count, ALuint* names)
{
    std::fill_n(names, count, 1u);
}
}

/// libvorbis 1.3.7 and its libvorbisfile leak the headers of some damaged chains. The reader's own
/// leaks of their memory show in its tests, which do not suppress them.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libvorbis";
}

void fuzz::test(std::string_view input)
{
    const std::string path = folder() + "sound.ogg";
    if (!input.empty()) {
        place("sound.ogg", input);
    }
    OggSound sound;
    OggSound::initAL(nullptr, nullptr);
    const auto load = [&] { sound.load(path.c_str()); };
    const bool refused = ends({{-1, "Cannot open " + path + " for reading...\n"},
                               {-1, "Error opening " + path + " for decoding...\n"},
                               {-1, "Error decoding " + path + "...\n"}},
                              load);
    expect(sound.numSamples >= 0, "a track has no negative length");
    if (!refused) {
        sound.play();
        sound.loopyPlay();
        sound.setVolume(1.5f);
        expect(sound.getPlaybackOffset() == 0, "without a device nothing is played");
        expect(sound.getState() == 0, "without a device there is no state");
        sound.stop();
        const std::vector<char> first = sound.bufferData;
        expect(memory::isScarce() || !ends({}, load), "a sound can be loaded again");
        expect(memory::isScarce() || sound.bufferData == first, "and is the same");
    }
    OggSound::exitAL();
}
