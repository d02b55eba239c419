#pragma once

#include "OggSound.h"

#include <filesystem>

/// The voice and the sound underneath, as they are heard. The voice is the clock of the recording.
class SceneSound {
public:
    /// Chooses what OpenAL plays on, before it is used for the first time in this process: a fine
    /// clock, unless the user has settings of their own, and without a sound device silence that
    /// takes its time. Starts a process for a moment.
    /// \param installedMedia  as seen from the program's folder: beside them lie OpenAL's settings
    ///                        for a fine clock, which may be missing
    /// \return whether there is a sound device
    static bool chooseDevice(const std::filesystem::path& installedMedia);

    /// Opens the device and reads both sounds from the working directory. Ends the process as
    /// OggSound::load does.
    SceneSound();
    SceneSound(const SceneSound&) = delete;
    SceneSound& operator=(const SceneSound&) = delete;

    /// Closes the device.
    ~SceneSound();

    /// Plays both from the start.
    void begin();

    /// The step of a recording of so many steps that goes with what is heard now.
    int step(int numSteps);

    /// Whether the voice has been played to its end.
    bool isOver();

private:
    struct Device {
        Device();
        ~Device();
    };
    Device device; ///< closed after the sounds are gone
    OggSound voice;
    OggSound bubbles;
    bool playing = false;
};
