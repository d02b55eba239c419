#include "CheckSound.h"

#include "OggFile.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace media {

namespace {

/// The gain that the scene gives to the voice.
constexpr float VOICE_GAIN = 1.5f;

constexpr const char* ENDS_AT_ONCE = "the scene ends as it starts, with status 255";

/// A track, measured while it is decoded.
class Track {
public:
    explicit Track(const std::filesystem::path& path) : file(path.c_str())
    {
        for (auto block = file.read(); !block.empty(); block = file.read()) {
            // The tracks of a chain may have different channels. The first two are measured.
            const int channels = file.blockChannels();
            const int present = std::min(channels, MEASURED);
            for (int c = 0; c < present; ++c) {
                measure(static_cast<std::size_t>(c), static_cast<std::size_t>(channels), block);
            }
            samples += static_cast<long>(block.size()) / (2 * channels);
        }
        measureSeam();
    }

    bool isWhole() const { return file.state() == OggFile::State::whole; }
    bool isOpened() const { return isWhole() || file.state() == OggFile::State::damaged; }

    OggFile file;
    long samples = 0;         ///< per channel
    long clipped = 0;         ///< samples at full scale, all channels
    float peak = 0;           ///< the largest absolute sample
    float seam = 0;           ///< the largest jump of a channel from its last sample to its first
    float steepestNearby = 0; ///< the largest jump between two samples close to the seam

    double seconds() const
    {
        return file.rate() > 0 ? static_cast<double>(samples) / static_cast<double>(file.rate())
                               : 0;
    }

private:
    /// \param channels  of the block
    void measure(std::size_t c, std::size_t channels, std::span<const char> block)
    {
        constexpr int FULL_SCALE = 32768;
        long at = samples;
        for (std::size_t i = 2 * c; i < block.size(); i += 2 * channels, ++at) {
            const int low = static_cast<unsigned char>(block[i]);
            const int value = static_cast<signed char>(block[i + 1]) * 256 + low;
            clipped += value == FULL_SCALE - 1 || value == -FULL_SCALE ? 1 : 0;
            const float level = static_cast<float>(value) / FULL_SCALE;
            peak = std::max(peak, std::abs(level));
            if (at < NEARBY) {
                start[c].push_back(level);
            }
            end[c][static_cast<std::size_t>(at % NEARBY)] = level;
        }
    }

    void measureSeam()
    {
        if (samples < 2) {
            return;
        }
        for (std::size_t c = 0; c < static_cast<std::size_t>(std::min(file.channels(), MEASURED));
             ++c) {
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
    if (track.file.channels() > 2) {
        report.wrong("has " + std::to_string(track.file.channels()) +
                     " channels: the scene takes them for 2 and plays noise at the wrong speed");
    } else if (track.file.channels() == 1) {
        report.hint("is mono: softer than a stereo track of the same level");
    }
    if (!track.file.isUniform()) {
        report.wrong("is a chain of tracks with different rates or channels: all are played as "
                     "the first");
    } else if (track.file.links() > 1) {
        report.hint("is a chain of " + std::to_string(track.file.links()) +
                    " tracks; the scene plays them one after the other");
    }
    if (track.file.rate() < COMMON[0]) {
        report.hint("has " + kiloHertz(track.file.rate()) +
                    ": everything bright is lost; 44.1 or 48 kHz "
                    "are usual");
    } else if (std::find(std::begin(COMMON), std::end(COMMON), track.file.rate()) ==
               std::end(COMMON)) {
        report.hint("has " + kiloHertz(track.file.rate()) +
                    ", an unusual rate; 44.1 or 48 kHz are usual");
    }
}

void checkLevel(const Track& track, float gain, FileReport& report)
{
    constexpr float SILENT = 0.001f;
    constexpr long SOME = 10000; // one clipped sample in so many can be heard
    if (track.peak < SILENT) {
        report.wrong("is silent");
    } else if (track.clipped > 0) {
        const std::string text =
            "clips: " + std::to_string(track.clipped) + " samples reach full scale; make it softer";
        if (track.clipped > track.samples * std::min(track.file.channels(), 2) / SOME) {
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
    if (!track.isOpened()) {
        report.stops("is no Ogg Vorbis file" + consequence);
        return false;
    }
    if (!track.isWhole()) {
        report.stops("is damaged after " + decimal(track.seconds(), 1) + " s" + consequence);
        return false;
    }
    report.summary = decimal(track.seconds(), 1) + " s, " + kiloHertz(track.file.rate()) +
                     (track.file.channels() == 1 ? ", mono" : ", stereo");
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
        } else if (track.isWhole()) {
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
