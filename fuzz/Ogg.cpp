/// The input is an Ogg Vorbis file.

#include "Harness.h"
#include "OggSound.h"

/// libvorbis 1.3.7 and its libvorbisfile lose the headers of some damaged chains.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libvorbis";
}

void fuzz::test(std::string_view input)
{
    const std::string path = place("sound.ogg", input);
    OggSound sound;
    const bool refused = ends({{-1, "Cannot open " + path + " for reading...\n"},
                               {-1, "Error opening " + path + " for decoding...\n"},
                               {-1, "Error decoding " + path + "...\n"}},
                              [&] { sound.load(path.c_str()); });
    expect(sound.numSamples >= 0, "a track has no negative length");
    if (!refused) {
        sound.play();
        sound.loopyPlay();
        sound.setVolume(1.5f);
        expect(sound.getPlaybackOffset() == 0, "without a device nothing is played");
        expect(sound.getState() == 0, "without a device there is no state");
        sound.stop();
    }
}
