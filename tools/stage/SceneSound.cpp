#include "SceneSound.h"

#include "MediaToPlay.h"
#include "MoCap.h"

#include <AL/alc.h>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

bool hasOwnSettings()
{
    const auto valueOf = [](const char* name) {
        const char* const value = std::getenv(name);
        return std::string(value != nullptr ? value : "");
    };
    const std::string home = valueOf("HOME");
    const std::string folder = valueOf("XDG_CONFIG_HOME");
    std::error_code error;
    return !valueOf("ALSOFT_CONF").empty() || std::filesystem::exists(home + "/.alsoftrc", error) ||
           std::filesystem::exists((folder.empty() ? home + "/.config" : folder) + "/alsoft.conf",
                                   error);
}

/// Asks in a process of its own: OpenAL reads its settings once.
bool hasDevice()
{
    const pid_t child = fork();
    if (child == 0) {
        // What the sound system says of a missing device is of no interest.
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDERR_FILENO);
        OggSound::initAL(nullptr, nullptr);
        _exit(alcGetCurrentContext() != nullptr ? 0 : 1);
    }
    int status = 1;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}

} // namespace

bool SceneSound::chooseDevice(const std::filesystem::path& installedMedia)
{
    const std::filesystem::path configuration = fromProgram(installedMedia / ".." / "alsoft.conf");
    std::error_code error;
    if (!hasOwnSettings() && std::filesystem::exists(configuration, error)) {
        setenv("ALSOFT_CONF", configuration.c_str(), 1);
    }
    const bool found = hasDevice();
    if (!found) {
        setenv("ALSOFT_DRIVERS", "null", 1);
    }
    return found;
}

SceneSound::Device::Device()
{
    OggSound::initAL(nullptr, nullptr);
}

SceneSound::Device::~Device()
{
    if (alcGetCurrentContext() != nullptr) {
        OggSound::exitAL();
    }
}

SceneSound::SceneSound()
{
    voice.load("sound/magpie_vocal.ogg");
    bubbles.load("sound/bubbles_sound.ogg");
    voice.setVolume(1.5f);
    bubbles.setVolume(0.2f);
}

SceneSound::~SceneSound() = default;

void SceneSound::begin()
{
    voice.play();
    bubbles.loopyPlay();
    playing = true;
}

int SceneSound::step(int numSteps)
{
    return MoCap::stepAt(numSteps, voice.getPlaybackOffset());
}

bool SceneSound::isOver()
{
    return playing && voice.getState() == AL_STOPPED;
}
