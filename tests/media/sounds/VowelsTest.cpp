#include "ReadSound.h"

#include <array>
#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <map>
#include <numbers>

namespace {

constexpr double PI2 = 2 * std::numbers::pi;
constexpr double BEAT = 0.84375;
constexpr double PHRASE = 4 * BEAT;

const Track& voice()
{
    static const Track track = readOgg(KELPIX_MEDIA_DIR "/sound/magpie_vocal.ogg");
    return track;
}

double frequencyOf(int pitch)
{
    return 440 * std::exp2((pitch - 69) / 12.0);
}

/// A note as it stands in the piece. Pitches in semitones, 69 = 440 Hz; 0 = no such voice.
struct Held {
    int phrase;
    double beat;
    double beats;
    int lead;
    int second; ///< a third below
    int low;
};

/// The energy of both channels around each harmonic of \p pitch, in dB: as far as the vibrato
/// carries it.
std::vector<double> harmonics(double from, double to, int pitch, double highest)
{
    const auto rate = static_cast<double>(voice().rate);
    const auto begin = static_cast<std::size_t>(from * rate);
    const auto count = static_cast<std::size_t>((to - from) * rate);
    std::vector<double> window(count);
    for (std::size_t i = 0; i < count; ++i) {
        window[i] = 0.5 - 0.5 * std::cos(PI2 * static_cast<double>(i) / static_cast<double>(count));
    }
    std::vector<double> levels;
    for (double f = frequencyOf(pitch); f < highest; f += frequencyOf(pitch)) {
        const double width = std::max(12.0, 0.025 * f);
        double energy = 0;
        for (double near = f - width; near <= f + width; near += 1 / (to - from)) {
            const double k = 2 * std::cos(PI2 * near / rate);
            for (const auto& channel : voice().pcm) {
                double a = 0;
                double b = 0;
                for (std::size_t i = 0; i < count; ++i) {
                    const double next =
                        window[i] * static_cast<double>(channel[begin + i]) + k * a - b;
                    b = a;
                    a = next;
                }
                energy += a * a + b * b - k * a * b;
            }
        }
        levels.push_back(10 * std::log10(energy + 1e-20));
    }
    return levels;
}

/// Whether a harmonic of another voice lies so close to \p f that both are heard as one.
bool covered(double f, int pitch, const Held& held, bool choir)
{
    for (const int other : {held.lead, choir ? held.second : 0, choir ? held.low : 0}) {
        if (other == 0 || other == pitch) {
            continue;
        }
        const double spacing = frequencyOf(other);
        const double nearest = std::max(1.0, std::round(f / spacing)) * spacing;
        if (std::abs(f - nearest) < std::max(35.0, 0.05 * f)) {
            return true;
        }
    }
    return false;
}

/// One harmonic of one pitch, as the vowel lets it through.
struct Sample {
    int harmonic;
    double frequency;
    double level; ///< dB, of an unknown zero that all samples of a pitch share
};

using Samples = std::map<int, std::vector<Sample>>; ///< by pitch

/// The harmonics of a vowel at all its pitches: the lead's in the first verse, where it is alone,
/// and the second voice's in the third verse, where that joins it.
Samples sample(const std::vector<Held>& notes, double highest)
{
    Samples samples;
    for (const int verse : {0, 2}) {
        const bool choir = verse == 2;
        for (const Held& held : notes) {
            const double at = 3 + (verse * 8 + held.phrase) * PHRASE + held.beat * BEAT;
            for (const int pitch : {held.lead, choir ? held.second : 0}) {
                if (pitch == 0 || (pitch == held.lead && choir)) {
                    continue;
                }
                const std::vector<double> levels =
                    harmonics(at + 0.17, at + held.beats * BEAT, pitch, highest);
                for (std::size_t k = 0; k < levels.size(); ++k) {
                    const double f = static_cast<double>(k + 1) * frequencyOf(pitch);
                    if (!covered(f, pitch, held, choir)) {
                        samples[pitch].push_back({static_cast<int>(k + 1), f, levels[k]});
                    }
                }
            }
        }
    }
    return samples;
}

/// Harmonic \p k of a note under a Hann window of ten of its periods that begins at \p seconds.
std::complex<double> harmonicAt(const std::vector<float>& channel, double rate, double seconds,
                                double fundamental, int k)
{
    const auto count = static_cast<std::size_t>(std::lround(10 * rate / fundamental));
    const auto begin = static_cast<std::size_t>(seconds * rate);
    std::complex<double> sum;
    for (std::size_t i = 0; i < count; ++i) {
        const double window =
            1 - std::cos(PI2 * static_cast<double>(i) / static_cast<double>(count));
        sum += window * static_cast<double>(channel[begin + i]) *
               std::polar(1.0, -PI2 * k * fundamental * static_cast<double>(begin + i) / rate);
    }
    return sum;
}

struct Formants {
    double first;
    double second;
};

/// The two resonances that explain all the samples best, after Fant's model of source and filter:
/// a source whose harmonics fall off steadily, through two resonances of 110 Hz. LPC would find
/// harmonics instead, because these are wider apart than the formants. What is tried lies between
/// three quarters and four thirds of \p around.
Formants fit(const Samples& samples, Formants around)
{
    const auto through = [](double f, double resonance) {
        return 1.0 / std::complex<double>(1, (f * f - resonance * resonance) / (110 * f));
    };
    Formants best{0, 0};
    double least = 1e9;
    for (double first = 0.75 * around.first; first < around.first / 0.75;
         first += 0.02 * around.first) {
        for (double second = 0.75 * around.second; second < around.second / 0.75;
             second += 0.02 * around.second) {
            for (double lower = 0; lower <= 16; lower += 1) {
                for (double slope = 0.5; slope < 1.2; slope += 0.1) {
                    double error = 0;
                    for (const auto& [pitch, voiced] : samples) {
                        std::vector<double> differences;
                        double mean = 0;
                        for (const Sample& s : voiced) {
                            const double mouth =
                                std::abs(through(s.frequency, first) -
                                         std::pow(10, -lower / 20) * through(s.frequency, second));
                            const double level =
                                20 * std::log10(mouth + 0.01) - 20 * slope * std::log10(s.harmonic);
                            differences.push_back(s.level - level);
                            mean += differences.back() / static_cast<double>(voiced.size());
                        }
                        for (const double difference : differences) {
                            error += std::abs(difference - mean);
                        }
                    }
                    if (error < least) {
                        least = error;
                        best = {first, second};
                    }
                }
            }
        }
    }
    return best;
}

/// Most of it is the fit's: a voice that sings these pitches shows few harmonics in a resonance.
constexpr double TOLERANCE = 0.1;

void expectFormants(const std::vector<Held>& notes, double highest, Formants expected)
{
    const Formants found = fit(sample(notes, highest), expected);
    EXPECT_NEAR(found.first, expected.first, TOLERANCE * expected.first);
    EXPECT_NEAR(found.second, expected.second, TOLERANCE * expected.second);
}

TEST(VowelsTest, SingsAnOpenA)
{
    expectFormants({{0, 1, 1.5, 69, 65, 50},
                    {1, 1, 1.75, 69, 65, 53},
                    {2, 0, 1, 72, 69, 48},
                    {4, 1.5, 1.5, 74, 71, 55}},
                   1700, {800, 1180});
}

TEST(VowelsTest, SingsAClearE)
{
    // Of the lower notes alone: over the higher ones the jaw opens, and the first formant rises.
    expectFormants({{7, 0.5, 0.5, 64, 60, 50}}, 2600, {430, 2050});
}

TEST(VowelsTest, SingsARoundO)
{
    expectFormants({{0, 0, 1, 62, 59, 50},
                    {1, 0, 0.75, 65, 62, 53},
                    {2, 2, 1, 67, 64, 48},
                    {3, 0.5, 0.5, 65, 62, 50},
                    {6, 2, 1, 69, 65, 53}},
                   1250, {470, 850});
}

TEST(VowelsTest, SingsADarkU)
{
    expectFormants({{3, 1, 1.75, 62, 59, 50}, {7, 1, 1.75, 62, 59, 50}}, 1050, {340, 720});
}

TEST(VowelsTest, WaversFiveToSixTimesASecondOnHeldNotes)
{
    const auto rate = static_cast<double>(voice().rate);
    for (const Held& held :
         {Held{1, 1, 1.75, 69, 0, 0}, Held{3, 1, 1.75, 62, 0, 0}, Held{4, 1.5, 1.5, 74, 0, 0}}) {
        const double at = 3 + held.phrase * PHRASE + held.beat * BEAT;
        const double end = at + held.beats * BEAT;
        // Three singers beat against each other: one harmonic in one channel nearly vanishes at
        // times, and its phase jumps. So three harmonics of both channels count, each as far as it
        // is strong at that moment.
        std::vector<double> pitches(static_cast<std::size_t>((end - at - 0.5) / 0.01), 0.0);
        std::vector<double> weights(pitches.size(), 0.0);
        for (const auto& channel : voice().pcm) {
            for (int k = 1; k <= 3; ++k) {
                std::vector<std::complex<double>> turns;
                double strongest = 0;
                for (std::size_t i = 0; i < pitches.size(); ++i) {
                    const double t = at + 0.45 + 0.01 * static_cast<double>(i);
                    const auto heard = [&](double seconds) {
                        return harmonicAt(channel, rate, seconds, frequencyOf(held.lead), k);
                    };
                    turns.push_back(heard(t + 0.002) * std::conj(heard(t)));
                    strongest = std::max(strongest, std::abs(turns.back()));
                }
                for (std::size_t i = 0; i < turns.size(); ++i) {
                    const double weight = std::abs(turns[i]) / strongest;
                    pitches[i] += weight * std::arg(turns[i]) / k;
                    weights[i] += weight;
                }
            }
        }
        double mean = 0;
        for (std::size_t i = 0; i < pitches.size(); ++i) {
            pitches[i] /= weights[i];
            mean += pitches[i] / static_cast<double>(pitches.size());
        }
        double strongest = 0;
        double found = 0;
        for (double tried = 3; tried < 9; tried += 0.05) {
            std::complex<double> sum;
            for (std::size_t i = 0; i < pitches.size(); ++i) {
                const double hann = 1 - std::cos(PI2 * static_cast<double>(i) /
                                                 static_cast<double>(pitches.size()));
                sum += hann * (pitches[i] - mean) *
                       std::polar(1.0, -PI2 * tried * 0.01 * static_cast<double>(i));
            }
            if (std::abs(sum) > strongest) {
                strongest = std::abs(sum);
                found = tried;
            }
        }
        EXPECT_GE(found, 5) << "at " << at << " s";
        EXPECT_LE(found, 6) << "at " << at << " s";
    }
}

} // namespace
