#pragma once

#include <cstdint>
#include <vector>

namespace record {

/// A decoded sound.
struct Track {
    std::vector<std::int16_t> samples; ///< interleaved
    int channels = 2;                  ///< 1 or 2
    int rate = 44100;                  ///< frames per second

    std::int64_t frames() const { return static_cast<std::int64_t>(samples.size()) / channels; }
};

/// The program's sound, computed: the voice once and the bubbles in a loop, with the program's
/// gains. Two channels at the voice's rate.
///
/// A mono track comes out at 0.6 on both sides, as OpenAL places it in front of the listener. Gains
/// above 1 count as 1, as in OpenAL. Bubbles of another rate are interpolated linearly. Sums that
/// 16 bits cannot hold are clamped.
class Mixer {
public:
    /// \param voice,bubbles  a track without frames is silence
    Mixer(Track voice, Track bubbles);

    int rate() const { return first.rate; }

    /// Frames \p from to \p from + \p count, counted from the start of the scene, both
    /// channels interleaved.
    std::vector<std::int16_t> mix(std::int64_t from, std::int64_t count) const;

private:
    Track first;
    Track loop;

    double voiceAt(std::int64_t frame, int channel) const;
    double bubblesAt(std::int64_t frame, int channel) const;
};

/// Decodes an Ogg Vorbis file as the program does, and ends the process as it does when that fails.
/// \param samples  set to the length in samples, as the program's clock takes it
Track loadTrack(const char* path, std::int64_t& samples);

} // namespace record
