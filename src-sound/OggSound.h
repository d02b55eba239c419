#pragma once

#include "OggTrack.h"

#include <AL/al.h>
#include <ogg/ogg.h>
#include <vector>

/// One Ogg Vorbis file, decoded as a whole and played by one OpenAL source.
///
/// Nothing is streamed: load leaves the whole track in one OpenAL buffer, so that playing reads no
/// file and the source's position can serve as a clock. Call initAL once, then for each sound load,
/// setVolume and play or loopyPlay; destroy the sounds before exitAL.
///
/// OpenAL's error state is never checked. Without a sound device, and before load, all operations
/// except the decoding have no effect, getState returns 0, and the playback fraction is 0.
///
/// \par Example
/// \snippet creature.cpp recording
class OggSound {
public:
    ALint state = 0;              ///< the source's state as getState read it last
    ALuint bufferID = 0;          ///< owns: the OpenAL buffer; 0 = none
    ALuint sourceID = 0;          ///< owns: the OpenAL source; 0 = none
    ALenum format = 0;            ///< AL_FORMAT_MONO16 or AL_FORMAT_STEREO16; 0 before load
    ALsizei freq = 0;             ///< samples per second
    std::vector<char> bufferData; ///< the decoded track: signed 16-bit little-endian, interleaved
    ogg_int64_t numSamples = 0;   ///< samples per channel of the track, all links of a chain
    ALfloat sampleOffset = 0;     ///< samples played, as getPlaybackOffset read it last

    OggSound() = default;
    OggSound(const OggSound&) = delete;
    OggSound& operator=(const OggSound&) = delete;

    /// Calls cleanUp.
    ~OggSound();

    /// Opens the default sound device and makes a context of it current. A failure is silent.
    /// \param argc  borrows: the argument count of main
    /// \param argv  the argument vector of main
    static void initAL(int* argc, char** argv);

    /// Closes the device that initAL opened.
    static void exitAL();

    /// Makes buffer and source, decodes the file at \p path into bufferData and passes it to
    /// OpenAL. Source and listener are placed at the origin. The sound does not play yet. If a
    /// track of three or more channels does not end with a whole stereo frame, OpenAL does not get
    /// the rest; bufferData keeps every byte. A second load replaces the sound. A file that cannot
    /// be decoded ends the process as in loadOGG.
    void load(const char* path);

    /// The same with a track that has been decoded before. One that is not whole ends the process
    /// here, as in loadOGG.
    void load(OggTrack track);

    /// Decodes the file at \p path. Needs no OpenAL. Sets numSamples.
    ///
    /// Writes one line to standard error and ends the process with status -1 when the file cannot
    /// be opened, is not Ogg Vorbis, or is damaged. A pipe or a device counts as a file that cannot
    /// be opened, so that nothing waits for it. A track of more than 2 GiB, which no OpenAL buffer
    /// can hold, counts as damaged.
    ///
    /// Fixed behavior: every number of channels but 1 counts as stereo. A track of three or more
    /// channels plays as a stereo track of its interleaved samples. Pinned by
    /// OggDecodingTest.MoreThanTwoChannelsCountAsStereoAndKeepAllBytes; do not correct.
    /// \param out     the track is appended to it: 2 bytes * channels * numSamples
    /// \param format  set to AL_FORMAT_MONO16 or AL_FORMAT_STEREO16
    /// \param freq    set to the samples per second
    void loadOGG(const char* path, std::vector<char>& out, int& format, unsigned& freq);

    /// Plays from the start: once; after loopyPlay, again and again.
    void play();

    /// Plays again and again, until stop.
    void loopyPlay();

    /// \param gain  factor of the amplitude, passed to OpenAL as it is. OpenAL limits it to the
    ///              source's AL_MAX_GAIN, which is 1 by default
    void setVolume(float gain);

    /// Stops playing.
    void stop();

    /// \return AL_INITIAL, AL_PLAYING or AL_STOPPED; also kept in state
    ALint getState();

    /// \return the playback position as a fraction of the track, 0 to 1: 0 before the sound is
    ///         played, after its end, and for a track without samples
    float getPlaybackOffset();

    /// Deletes buffer and source and sets both names to 0; bufferData stays.
    ///
    /// Fixed behavior: OggSound::cleanUp deletes the buffer before the source. OpenAL refuses to
    /// delete a buffer that a source holds, so that the buffer of a loaded sound stays until
    /// exitAL. Pinned by OggSoundCallsTest.CleanUpDeletesTheBufferThenTheSource; do not correct.
    void cleanUp();

private:
    /// What load does before it needs the track.
    void makeSource();
    /// The rest of load.
    void fill(OggTrack track);
    /// Sets what loadOGG sets.
    void take(OggTrack track, std::vector<char>& out, int& format, unsigned& freq);
};
