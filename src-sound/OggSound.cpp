#include "OggSound.h"

#include "OpenFile.h"

#include <AL/alut.h>
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <new>
#include <string_view>
#include <sys/stat.h>
#include <vorbis/vorbisfile.h>

namespace {

[[noreturn]] void fail(std::string_view before, const char* path, std::string_view after)
{
    std::cerr << before << path << after << std::endl;
    std::exit(-1);
}

/// What one OpenAL buffer can hold. A file of some kilobytes can claim, and decode to, far more.
constexpr std::size_t MAX_TRACK_BYTES = std::numeric_limits<ALsizei>::max();

/// Whether a track of so many samples per channel fits one OpenAL buffer.
bool isPlayable(ogg_int64_t samples, int channels)
{
    const std::uintmax_t frameBytes = 2 * static_cast<std::uintmax_t>(std::max(channels, 1));
    return static_cast<std::uintmax_t>(samples) <= MAX_TRACK_BYTES / frameBytes;
}

/// \return 0 when it cannot be told
std::uintmax_t sizeOf(std::FILE* file)
{
    struct stat status = {};
    return fstat(fileno(file), &status) == 0 ? static_cast<std::uintmax_t>(status.st_size) : 0;
}

/// The bytes to expect of the decoded track. A header may claim anything: no more than 64 times
/// the size of the file is believed.
std::size_t expectedBytes(std::uintmax_t fileBytes, ogg_int64_t samples, int channels)
{
    if (samples <= 0 || channels <= 0) {
        return 0;
    }
    const auto frames = static_cast<std::uintmax_t>(samples);
    const auto frameBytes = static_cast<std::uintmax_t>(2) * static_cast<unsigned>(channels);
    const std::uintmax_t believed = std::min<std::uintmax_t>(fileBytes, 1 << 25) * 64;
    return static_cast<std::size_t>(std::min(frames, believed / frameBytes) * frameBytes);
}

/// Goes to the first sample of a chain. After ov_open the decoder already stands there, but for a
/// chain whose first link has all its audio in one Ogg page: that link would be left out.
/// \return false when the stream is damaged
bool rewindChain(OggVorbis_File& file)
{
    return ov_streams(&file) < 2 || ov_pcm_tell(&file) == 0 || ov_pcm_seek(&file, 0) == 0;
}

/// Appends the whole stream to \p out.
/// \return false when the stream is damaged, or too long
bool decode(OggVorbis_File& file, std::vector<char>& out)
{
    constexpr int LITTLE_ENDIAN_ORDER = 0;
    constexpr int WORD_BYTES = 2;
    constexpr int SIGNED = 1;
    char chunk[32768];
    int bitStream = 0;
    for (;;) {
        const long count = ov_read(&file, chunk, sizeof chunk, LITTLE_ENDIAN_ORDER, WORD_BYTES,
                                   SIGNED, &bitStream);
        if (count <= 0) {
            return count == 0;
        }
        if (out.size() + static_cast<std::size_t>(count) > MAX_TRACK_BYTES) {
            return false;
        }
        out.insert(out.end(), chunk, chunk + count);
    }
}

/// The bytes of whole frames in \p bytes, at most MAX_TRACK_BYTES.
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
    // alutExit closes nothing while an error is pending, and cleanUp leaves one behind.
    alGetError();
    alutExit();
}

void OggSound::load(const char* path)
{
    if (sourceID != 0) {
        // The source goes first here: OpenAL keeps a buffer that a source holds.
        alDeleteSources(1, &sourceID);
        sourceID = 0;
    }
    cleanUp();
    bufferData.clear();

    alGenBuffers(1, &bufferID);
    alGenSources(1, &sourceID);
    alListener3f(AL_POSITION, 0, 0, 0);
    alSource3f(sourceID, AL_POSITION, 0, 0, 0);

    unsigned rate = 0;
    loadOGG(path, bufferData, format, rate);
    freq = static_cast<ALsizei>(rate);

    alBufferData(bufferID, format, bufferData.data(), wholeFrames(bufferData.size(), format), freq);
    alSourcei(sourceID, AL_BUFFER, static_cast<ALint>(bufferID));
}

void OggSound::loadOGG(const char* path, std::vector<char>& out, int& format, unsigned& freq)
{
    path = path == nullptr ? "" : path;
    // A directory opens too, and fails at the first read.
    Files::Handle file = Files::openRegularOrFolder(path);
    if (file == nullptr) {
        fail("Cannot open ", path, " for reading...");
    }

    OggVorbis_File vorbisFile;
    if (ov_open(file.get(), &vorbisFile, nullptr, 0) != 0) {
        file.reset();
        fail("Error opening ", path, " for decoding...");
    }
    // The decoder owns the file from here on: ov_clear closes it.
    const std::uintmax_t fileBytes = sizeOf(file.release());

    const vorbis_info* const info = ov_info(&vorbisFile, -1);
    const int channels = info == nullptr ? 0 : info->channels;
    numSamples = std::max<ogg_int64_t>(ov_pcm_total(&vorbisFile, -1), 0);
    format = channels == 1 ? AL_FORMAT_MONO16 : AL_FORMAT_STEREO16;
    freq = info == nullptr ? 0 : static_cast<unsigned>(info->rate);

    bool complete = false;
    try {
        out.reserve(out.size() + expectedBytes(fileBytes, numSamples, channels));
        complete =
            isPlayable(numSamples, channels) && rewindChain(vorbisFile) && decode(vorbisFile, out);
    } catch (const std::bad_alloc&) {
        // A track that memory cannot hold ends like a damaged one.
    }
    ov_clear(&vorbisFile);
    if (!complete) {
        fail("Error decoding ", path, "...");
    }
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
    // The position in seconds is deliberately asked for and not used.
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
