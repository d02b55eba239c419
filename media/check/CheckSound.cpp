#include "CheckSound.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vorbis/vorbisfile.h>

namespace media {

namespace {

/// The gain that the scene gives to the voice.
constexpr float VOICE_GAIN = 1.5f;

constexpr const char* ENDS_AT_ONCE = "the scene ends as it starts, with status 255";

/// A track, measured while it is decoded.
class Track {
public:
    explicit Track(const std::filesystem::path& path)
    {
        opened = ov_fopen(path.c_str(), &file) == 0;
        if (!opened) {
            return;
        }
        // The first link counts, as it does where the scene asks.
        const vorbis_info* info = ov_info(&file, 0);
        channels = info->channels;
        rate = info->rate;
        links = static_cast<int>(ov_streams(&file));
        for (int link = 1; link < links; ++link) {
            info = ov_info(&file, link);
            uniform = uniform && info->channels == channels && info->rate == rate;
        }
        decode();
    }
    Track(const Track&) = delete;
    Track& operator=(const Track&) = delete;
    ~Track()
    {
        if (opened) {
            ov_clear(&file);
        }
    }

    bool opened = false; ///< it is Ogg Vorbis
    bool whole = false;  ///< it could be decoded to its end
    int channels = 0;
    long rate = 0;
    int links = 0;
    bool uniform = true;      ///< all links have the same channels and rate
    long samples = 0;         ///< per channel
    long clipped = 0;         ///< samples beyond full scale, all channels
    float peak = 0;           ///< the largest absolute sample
    float seam = 0;           ///< the jump from the last sample to the first, the largest channel's
    float steepestNearby = 0; ///< the largest jump between neighbours close to that seam

    double seconds() const
    {
        return rate > 0 ? static_cast<double>(samples) / static_cast<double>(rate) : 0;
    }

private:
    void decode()
    {
        if (links > 1 && ov_pcm_seek(&file, 0) != 0) {
            return;
        }
        constexpr int BLOCK = 4096;
        float** block = nullptr;
        int link = 0;
        long count = 0;
        while ((count = ov_read_float(&file, &block, BLOCK, &link)) > 0) {
            // Of a mixed chain only the channels that every link may have are measured.
            const int present = std::min(ov_info(&file, link)->channels, MEASURED);
            for (int c = 0; c < present; ++c) {
                measure(static_cast<std::size_t>(c), block[c], count);
            }
            samples += count;
        }
        whole = count == 0;
        measureSeam();
    }

    void measure(std::size_t c, const float* values, long count)
    {
        for (long i = 0; i < count; ++i) {
            const float level = std::abs(values[i]);
            peak = std::max(peak, level);
            clipped += level >= 1 ? 1 : 0;
            if (samples + i < NEARBY) {
                start[c].push_back(values[i]);
            }
            end[c][static_cast<std::size_t>((samples + i) % NEARBY)] = values[i];
        }
    }

    void measureSeam()
    {
        if (samples < 2) {
            return;
        }
        for (std::size_t c = 0; c < static_cast<std::size_t>(std::min(channels, MEASURED)); ++c) {
            const std::vector<float>& head = start[c];
            if (head.empty()) {
                continue;
            }
            for (std::size_t i = 1; i < head.size(); ++i) {
                steepestNearby = std::max(steepestNearby, std::abs(head[i] - head[i - 1]));
            }
            const long kept = std::min<long>(samples, NEARBY);
            const auto tail = [&](long back) {
                return end[c][static_cast<std::size_t>((samples - 1 - back) % NEARBY)];
            };
            for (long back = 1; back < kept; ++back) {
                steepestNearby = std::max(steepestNearby, std::abs(tail(back) - tail(back - 1)));
            }
            seam = std::max(seam, std::abs(tail(0) - head.front()));
        }
    }

    static constexpr int MEASURED = 2;
    static constexpr long NEARBY = 4096; ///< samples before and after the seam

    OggVorbis_File file{};
    std::array<std::vector<float>, MEASURED> start; ///< the first samples, by channel
    /// The last ones: sample i is at i modulo NEARBY.
    std::array<std::array<float, NEARBY>, MEASURED> end{};
};

std::string kiloHertz(long rate)
{
    return decimal(static_cast<double>(rate) / 1000, 1) + " kHz";
}

void checkFormat(const Track& track, FileReport& report)
{
    constexpr long COMMON[] = {22050, 32000, 44100, 48000, 88200, 96000};
    if (track.channels > 2) {
        report.wrong("has " + std::to_string(track.channels) +
                     " channels: the scene takes them for 2 and plays noise at the wrong speed");
    } else if (track.channels == 1) {
        report.hint("is mono: softer than a stereo track of the same level");
    }
    if (!track.uniform) {
        report.wrong("is a chain of tracks with different rates or channels: all are played as "
                     "the first");
    } else if (track.links > 1) {
        report.hint("is a chain of " + std::to_string(track.links) +
                    " tracks; the scene plays them one after the other");
    }
    if (track.rate < COMMON[0]) {
        report.hint("has " + kiloHertz(track.rate) +
                    ": everything bright is lost; 44.1 or 48 kHz "
                    "are usual");
    } else if (std::find(std::begin(COMMON), std::end(COMMON), track.rate) == std::end(COMMON)) {
        report.hint("has " + kiloHertz(track.rate) + ", an unusual rate; 44.1 or 48 kHz are usual");
    }
}

void checkLevel(const Track& track, float gain, FileReport& report)
{
    constexpr float SILENT = 0.001f;
    constexpr long SOME = 10000; // a clipped sample in so many is heard
    if (track.peak < SILENT) {
        report.wrong("is silent");
    } else if (track.clipped > 0) {
        const std::string text =
            "clips: " + std::to_string(track.clipped) + " samples reach full scale; make it softer";
        if (track.clipped > track.samples * std::min(track.channels, 2) / SOME) {
            report.wrong(text);
        } else {
            report.hint(text);
        }
    } else if (track.peak * gain > 1) {
        report.hint("peaks at " + decimal(20 * std::log10(static_cast<double>(track.peak)), 1) +
                    " dB and is played 1.5 times as loud: where the sound system lets that "
                    "through it clips; -4 dB is as loud as it can be");
    }
}

/// Checks what holds for both tracks.
/// \param gain  above 1 where the scene makes the track louder
/// \return whether there is sound
bool checkTrack(const Track& track, float gain, FileReport& report)
{
    const std::string consequence = std::string("; ") + ENDS_AT_ONCE;
    if (!track.opened) {
        report.stops("is no Ogg Vorbis file" + consequence);
        return false;
    }
    if (!track.whole) {
        report.stops("is damaged after " + decimal(track.seconds(), 1) + " s" + consequence);
        return false;
    }
    report.summary = decimal(track.seconds(), 1) + " s, " + kiloHertz(track.rate) +
                     (track.channels == 1 ? ", mono" : ", stereo");
    if (track.samples == 0) {
        report.wrong("is empty: there is nothing to hear");
        return false;
    }
    checkFormat(track, report);
    checkLevel(track, gain, report);
    return true;
}

} // namespace

VoiceCheck checkVoice(const std::filesystem::path& folder)
{
    VoiceCheck check{{"sound/magpie_vocal.ogg", "", {}}, 0};
    const std::filesystem::path path = folder / check.report.name;
    if (checkReadable(path, Mark::stops, ENDS_AT_ONCE, check.report)) {
        const Track track(path);
        if (checkTrack(track, VOICE_GAIN, check.report)) {
            check.seconds = track.seconds();
        } else if (track.whole) {
            check.report.wrong("without a voice there is no clock: the figures do not move");
        }
    }
    return check;
}

FileReport checkBubbles(const std::filesystem::path& folder)
{
    constexpr float AUDIBLE = 0.02f;
    FileReport report{"sound/bubbles_sound.ogg", "", {}};
    const std::filesystem::path path = folder / report.name;
    if (checkReadable(path, Mark::stops, ENDS_AT_ONCE, report)) {
        const Track track(path);
        if (checkTrack(track, 1, report) && track.seam > AUDIBLE &&
            track.seam > 2 * track.steepestNearby) {
            report.wrong("jumps by " + decimal(static_cast<double>(track.seam), 2) +
                         " from its last sample to its first: the loop clicks each time round");
        }
    }
    return report;
}

} // namespace media
