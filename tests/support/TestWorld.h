#pragma once

#include "Environment.h"
#include "MoCap.h"
#include "ReferenceScene.h"
#include "TempDirectory.h"

class Boid;
class Sensor;

/// Three figures that rest where they cannot be seen or felt, for one step.
reference::Recording farAwayRecording();

/// A working directory with a recording in it as the scene reads it.
class SceneFolder {
public:
    explicit SceneFolder(const reference::Recording& recording);

private:
    TempDirectory directory;
};

/// An Environment as it is after srand(\p seed), with that recording, no voice, and the count of
/// draws between bubbles at 0. It stays reachable until the program ends, as in the program itself.
Environment* newWorld(unsigned seed, const reference::Recording& recording = farAwayRecording());

/// Has its textures count as loaded, so that drawing reads no files.
void skipTextures(Environment* world);

std::vector<Boid*> boidsOf(Environment* world);
Sensor* sensorOf(Environment* world, std::size_t number);
MoCap* recordingOf(Environment* world);
