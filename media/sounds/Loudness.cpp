#include "Loudness.h"

#include "Point.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace media {

namespace {

constexpr double SILENCE = -70; // LUFS

/// A filter of second order, in the transposed direct form II.
class Biquad {
public:
    Biquad(double b0, double b1, double b2, double a0, double a1, double a2)
        : in{b0 / a0, b1 / a0, b2 / a0}, out{a1 / a0, a2 / a0}
    {
    }

    double filter(double x)
    {
        const double y = in[0] * x + first;
        first = in[1] * x - out[0] * y + second;
        second = in[2] * x - out[1] * y;
        return y;
    }

private:
    double in[3];
    double out[2];
    double first = 0;
    double second = 0;
};

/// The head: a shelf that lifts high frequencies by 4 dB. Its constants give the coefficients that
/// BS.1770 prints for 48 kHz at any sample rate.
Biquad shelf()
{
    constexpr double FREQUENCY = 1681.974450955533;
    constexpr double QUALITY = 0.7071752369554196;
    const double high = std::pow(10, 3.999843853973347 / 20);
    const double band = std::pow(high, 0.4996667741545416);
    const double k = std::tan(std::numbers::pi * FREQUENCY / SAMPLE_RATE);
    return {
        high + band * k / QUALITY + k * k, 2 * (k * k - high), high - band * k / QUALITY + k * k,
        1 + k / QUALITY + k * k,           2 * (k * k - 1),    1 - k / QUALITY + k * k};
}

/// The ear: low frequencies count less.
Biquad highPass()
{
    constexpr double FREQUENCY = 38.13547087602444;
    constexpr double QUALITY = 0.5003270373238773;
    const double k = std::tan(std::numbers::pi * FREQUENCY / SAMPLE_RATE);
    const double a0 = 1 + k / QUALITY + k * k;
    return {a0, -2 * a0, a0, a0, 2 * (k * k - 1), 1 - k / QUALITY + k * k};
}

double loudnessOf(double power)
{
    return power > 0 ? std::max(SILENCE, -0.691 + 10 * std::log10(power)) : SILENCE;
}

double mean(const std::vector<double>& powers)
{
    double sum = 0;
    for (const double power : powers) {
        sum += power;
    }
    return powers.empty() ? 0 : sum / static_cast<double>(powers.size());
}

} // namespace

double loudness(const Sound& sound, double from, double to)
{
    const auto begin = static_cast<std::size_t>(from * SAMPLE_RATE);
    const auto end = std::min(static_cast<std::size_t>(to * SAMPLE_RATE), sound.size());
    // The power of each tenth of a second, both channels together.
    constexpr std::size_t TENTH = SAMPLE_RATE / 10;
    std::vector<double> tenths(end > begin ? (end - begin) / TENTH : 0, 0.0);
    for (const std::vector<float>* channel : {&sound.left, &sound.right}) {
        Biquad head = shelf();
        Biquad ear = highPass();
        for (std::size_t i = 0; i < tenths.size() * TENTH; ++i) {
            const double v = ear.filter(head.filter(static_cast<double>((*channel)[begin + i])));
            tenths[i / TENTH] += v * v / TENTH;
        }
    }
    std::vector<double> blocks;
    for (std::size_t i = 0; i + 4 <= tenths.size(); ++i) {
        const double power = (tenths[i] + tenths[i + 1] + tenths[i + 2] + tenths[i + 3]) / 4;
        if (loudnessOf(power) > SILENCE) {
            blocks.push_back(power);
        }
    }
    const double gate = mean(blocks) / 10;
    blocks.erase(
        std::remove_if(blocks.begin(), blocks.end(), [gate](double p) { return p <= gate; }),
        blocks.end());
    return loudnessOf(mean(blocks));
}

void levelPhrases(Sound& sound, const Score& score)
{
    constexpr double TARGET = -20;       // LUFS, of the first verse
    constexpr double GROWTH = 0.2;       // from verse to verse
    constexpr double GLIDE = 0.5;        // seconds, in the rest at the end of a phrase
    constexpr double MOST = 4;           // a gain for silence would be without bounds
    constexpr double SOFT_PRELUDE = 0.7; // of the gain of the first phrase
    std::vector<double> gains;
    for (const Cue& cue : score.cues) {
        const double now = loudness(sound, cue.start, cue.start + PHRASE);
        gains.push_back(
            std::min(MOST, std::pow(10, (TARGET + GROWTH * std::min(cue.verse, 3) - now) / 20)));
    }
    for (std::size_t i = 0; i < sound.size(); ++i) {
        const double now = static_cast<double>(i) / SAMPLE_RATE;
        const double phrases = (now + GLIDE - score.prelude) / PHRASE;
        const auto next = static_cast<std::size_t>(
            std::clamp(phrases, 0.0, static_cast<double>(gains.size()) - 1));
        const double before = next > 0 ? gains[next - 1] : SOFT_PRELUDE * gains[0];
        const double start = score.prelude + static_cast<double>(next) * PHRASE;
        const auto part = static_cast<double>(
            smoothstep(0, 1, static_cast<float>((now + GLIDE - start) / GLIDE)));
        const auto gain = static_cast<float>(before + (gains[next] - before) * part);
        sound.left[i] *= gain;
        sound.right[i] *= gain;
    }
}

} // namespace media
