#pragma once

#include <AL/al.h>
#include <ogg/ogg.h>
#include <vector>

/// One Ogg Vorbis file, decoded whole and played by one OpenAL source.
///
/// Nothing is streamed: load leaves the whole track in one OpenAL buffer, so playing costs no
/// further reads and the source's position serves as a clock. Call initAL once, then per sound
/// load, setVolume and play or loopyPlay; destroy the sounds before exitAL.
///
/// OpenAL's error state is never looked at. Without a sound device, and before load, every
/// operation but the decoding is without effect, getState returns 0 and the playback fraction is 0.
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

    /// Makes buffer and source, decodes the file at \p path into bufferData and hands it over to
    /// OpenAL; source and listener are placed at the origin. The sound is stopped afterwards.
    /// Of a track with three or more channels OpenAL gets whole stereo frames only, bufferData
    /// keeps every byte. Loading again replaces the sound.
    /// Ends the process as loadOGG does.
    void load(const char* path);

    /// Decodes the file at \p path, also without OpenAL. Sets numSamples.
    /// \param out     the track is appended to it: 2 bytes * channels * numSamples
    /// \param format  set to AL_FORMAT_MONO16 for one channel, else to AL_FORMAT_STEREO16
    /// \param freq    set to the samples per second
    /// A file that cannot be opened, that is no Ogg Vorbis, or that is damaged: writes one line to
    /// the standard error stream and ends the process with status -1. A track of more than 2 GiB,
    /// which no OpenAL buffer can hold, counts as damaged. A pipe or a device counts as
    /// a file that cannot be opened, so that nothing waits for it.
    void loadOGG(const char* path, std::vector<char>& out, int& format, unsigned& freq);

    /// Plays from the start, once, or without end after loopyPlay.
    void play();

    /// Plays for ever.
    void loopyPlay();

    /// \param gain  factor to the amplitude, passed on as it is, values above 1 too; what is heard
    ///              is limited to the source's maximum, 1 unless somebody raised it
    void setVolume(float gain);

    void stop();

    /// \return AL_INITIAL, AL_PLAYING or AL_STOPPED; also kept in state
    ALint getState();

    /// \return the playback position as a fraction of the track: 0 before playing and after the
    ///         end, else growing from 0 towards 1; 0 for a track without samples
    float getPlaybackOffset();

    /// Deletes buffer and source, in this order, and forgets their names; bufferData stays.
    /// OpenAL refuses to delete a buffer while a source holds it: that of a loaded sound lives on
    /// in OpenAL until exitAL.
    void cleanUp();
};
