#include "OggSound.h"

#include <AL/alut.h>
#include <cstdlib>
#include <iostream>
#include <string_view>
#include <utility>

namespace {

[[noreturn]] void fail(std::string_view before, const char* path, std::string_view after)
{
    std::cerr << before << path << after << std::endl;
    std::exit(-1);
}

/// Ends the process with a message of what is wrong with a track, unless it is whole.
void requireWhole(const OggTrack& track)
{
    switch (track.state) {
    case OggFile::State::noFile:
        fail("Cannot open ", track.path, " for reading...");
    case OggFile::State::noVorbis:
        fail("Error opening ", track.path, " for decoding...");
    case OggFile::State::whole:
        break;
    default:
        fail("Error decoding ", track.path, "...");
    }
}

/// \p bytes, rounded down to whole frames; at most OggFile::MAX_BYTES.
ALsizei wholeFrames(std::size_t bytes, ALenum format)
{
    const std::size_t frameBytes = format == AL_FORMAT_MONO16 ? 2 : 4;
    return static_cast<ALsizei>(bytes / frameBytes * frameBytes);
}

} // namespace

OggSound::~OggSound()
{
    cleanUp();
}

void OggSound::initAL(int* argc, char** argv)
{
    alutInit(argc, argv);
}

void OggSound::exitAL()
{
    // alutExit closes nothing while an error is pending, and cleanUp causes one.
    alGetError();
    alutExit();
}

void OggSound::load(const char* path)
{
    makeSource();
    fill(OggTrack::decode(path));
}

void OggSound::load(OggTrack track)
{
    makeSource();
    fill(std::move(track));
}

void OggSound::makeSource()
{
    if (sourceID != 0) {
        // Here the source is deleted first, so that OpenAL can delete the buffer that it holds.
        alDeleteSources(1, &sourceID);
        sourceID = 0;
    }
    cleanUp();
    bufferData.clear();

    alGenBuffers(1, &bufferID);
    alGenSources(1, &sourceID);
    alListener3f(AL_POSITION, 0, 0, 0);
    alSource3f(sourceID, AL_POSITION, 0, 0, 0);
}

void OggSound::fill(OggTrack track)
{
    unsigned rate = 0;
    take(std::move(track), bufferData, format, rate);
    freq = static_cast<ALsizei>(rate);

    alBufferData(bufferID, format, bufferData.data(), wholeFrames(bufferData.size(), format), freq);
    alSourcei(sourceID, AL_BUFFER, static_cast<ALint>(bufferID));
}

void OggSound::loadOGG(const char* path, std::vector<char>& out, int& format, unsigned& freq)
{
    take(OggTrack::decode(path, std::move(out)), out, format, freq);
}

void OggSound::take(OggTrack track, std::vector<char>& out, int& format, unsigned& freq)
{
    requireWhole(track);
    numSamples = track.samples;
    format = track.channels == 1 ? AL_FORMAT_MONO16 : AL_FORMAT_STEREO16;
    freq = static_cast<unsigned>(track.rate);
    out = std::move(track.data);
}

void OggSound::play()
{
    alSourcePlay(sourceID);
}

void OggSound::loopyPlay()
{
    alSourcei(sourceID, AL_LOOPING, 1);
    alSourcePlay(sourceID);
}

void OggSound::setVolume(float gain)
{
    alSourcef(sourceID, AL_GAIN, gain);
}

void OggSound::stop()
{
    alSourceStop(sourceID);
}

ALint OggSound::getState()
{
    // A query that fails leaves its output as it is.
    state = 0;
    alGetSourcei(sourceID, AL_SOURCE_STATE, &state);
    return state;
}

float OggSound::getPlaybackOffset()
{
    // Fixed behavior: getPlaybackOffset also asks OpenAL for the position in seconds and does not
    // use it. Pinned by OggSoundCallsTest.ThePositionIsAskedForInSecondsTooAndDividedBySamples; do
    // not correct.
    ALfloat seconds = 0;
    alGetSourcef(sourceID, AL_SEC_OFFSET, &seconds);
    sampleOffset = 0;
    alGetSourcef(sourceID, AL_SAMPLE_OFFSET, &sampleOffset);
    return numSamples > 0 ? sampleOffset / static_cast<float>(numSamples) : 0;
}

void OggSound::cleanUp()
{
    if (bufferID != 0) {
        alDeleteBuffers(1, &bufferID);
    }
    if (sourceID != 0) {
        alDeleteSources(1, &sourceID);
    }
    bufferID = 0;
    sourceID = 0;
}
