#include "ReadSound.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <fstream>
#include <gtest/gtest.h>
#include <numbers>

/// Whether dance and voice are one, judged by what is seen and heard: the strokes are found in the
/// recorded places, the attacks of the notes in the decoded sound.

namespace {

constexpr int RECORDS_PER_SECOND = 90;
constexpr std::size_t FIGURES = 3;

/// The figures dance from the first note on, and have begun to leave a moment after the last breath
/// has begun: four beats and a half into the coda.
constexpr double FIRST_NOTE = 3;
constexpr double LAST_BREATH = 111 + 4.5 * 0.84375;

/// Two events that are no further apart seem to be one.
constexpr double TOGETHER = 0.06;

using Times = std::vector<double>; // seconds

/// In place, of a power of two values: the fast Fourier transform with a radix of two.
void transform(std::vector<std::complex<double>>& values)
{
    const std::size_t count = values.size();
    for (std::size_t i = 1, j = 0; i < count; ++i) {
        std::size_t bit = count >> 1;
        for (; (j & bit) != 0; bit >>= 1) {
            j ^= bit;
        }
        j ^= bit;
        if (i < j) {
            std::swap(values[i], values[j]);
        }
    }
    for (std::size_t half = 1; half < count; half *= 2) {
        const auto turn = std::polar(1.0, -std::numbers::pi / static_cast<double>(half));
        std::complex<double> factor = 1;
        for (std::size_t k = 0; k < half; ++k, factor *= turn) {
            for (std::size_t i = k; i < count; i += 2 * half) {
                const auto odd = values[i + half] * factor;
                values[i + half] = values[i] - odd;
                values[i] += odd;
            }
        }
    }
}

/// Spectra of the sound, one about every hundredth of a second.
class Spectra {
public:
    explicit Spectra(const Track& track)
    {
        // Only the frequencies of a voice are wanted: a quarter of the samples will do.
        std::vector<double> samples(track.pcm[0].size() / FEWER);
        for (std::size_t i = 0; i < samples.size() * FEWER; ++i) {
            for (const auto& channel : track.pcm) {
                samples[i / FEWER] += static_cast<double>(channel[i]);
            }
        }
        std::vector<std::complex<double>> values(WINDOW);
        for (std::size_t begin = 0; begin + WINDOW <= samples.size(); begin += HOP) {
            for (std::size_t i = 0; i < WINDOW; ++i) {
                const double phase = 2 * std::numbers::pi * static_cast<double>(i) / WINDOW;
                values[i] = samples[begin + i] * (0.5 - 0.5 * std::cos(phase));
            }
            transform(values);
            auto& spectrum = spectra.emplace_back();
            for (std::size_t i = LOWEST; i < HIGHEST; ++i) {
                spectrum.push_back(std::abs(values[i]));
                loudest = std::max(loudest, spectrum.back());
            }
        }
        // From eighty decibels below the loudest tone on: the last notes are soft.
        for (auto& spectrum : spectra) {
            for (double& value : spectrum) {
                value = std::log10(value + 1e-4 * loudest);
            }
        }
    }

    /// By how much the spectrum around a window rises, over the frequencies that rise at all.
    std::vector<double> flux() const
    {
        std::vector<double> flux(spectra.size());
        for (std::size_t i = LAG; i < spectra.size(); ++i) {
            for (std::size_t k = 0; k < spectra[i].size(); ++k) {
                flux[i] += std::max(0.0, spectra[i][k] - spectra[i - LAG][k]);
            }
            flux[i] /= static_cast<double>(spectra[i].size());
        }
        return flux;
    }

    /// The middle of the time over which the flux of an index is taken.
    static double secondsAt(std::size_t index)
    {
        return (static_cast<double>(index * HOP) + 0.5 * WINDOW - 0.5 * LAG * HOP) / RATE;
    }

private:
    static constexpr std::size_t FEWER = 4;
    static constexpr double RATE = 44100.0 / FEWER;
    static constexpr std::size_t WINDOW = 512;
    static constexpr std::size_t HOP = 110;
    static constexpr std::size_t LAG = 3;
    static constexpr auto LOWEST = static_cast<std::size_t>(200 * WINDOW / RATE);
    static constexpr auto HIGHEST = static_cast<std::size_t>(4000 * WINDOW / RATE);

    std::vector<std::vector<double>> spectra;
    double loudest = 0;
};

/// The attacks of the notes: where the spectrum rises most, within a sixth of a second, and clearly
/// more than at most times of the half second around it, when it rises with the vibrato.
/// Source: J. P. Bello et al., "A Tutorial on Onset Detection in Music Signals", IEEE Transactions
/// on Speech and Audio Processing 13(5), 2005: spectral flux, with a median as threshold.
Times attacksOf(const Track& track)
{
    constexpr std::ptrdiff_t NEAR = 8;
    constexpr std::ptrdiff_t AROUND = 25;
    const std::vector<double> flux = Spectra(track).flux();
    Times attacks;
    for (auto at = flux.begin() + AROUND; at < flux.end() - AROUND; ++at) {
        std::vector<double> around(at - AROUND, at + AROUND + 1);
        std::nth_element(around.begin(), around.begin() + AROUND, around.end());
        if (*at == *std::max_element(at - NEAR, at + NEAR + 1) &&
            *at > 1.4 * around[AROUND] + 0.012) {
            attacks.push_back(Spectra::secondsAt(static_cast<std::size_t>(at - flux.begin())));
        }
    }
    return attacks;
}

/// The recorded places of a figure. Their unit does not matter here.
std::vector<std::complex<double>> placesOf(std::size_t figure)
{
    std::ifstream file(KELPIX_MEDIA_DIR "/data/dance.txt");
    std::vector<std::complex<double>> places;
    for (std::array<double, 25> record{};;) {
        for (double& number : record) {
            file >> number;
        }
        if (!file) {
            return places;
        }
        places.emplace_back(record[1 + 6 * figure], record[2 + 6 * figure]);
    }
}

/// The strokes of a figure: bursts of acceleration, for between its strokes only water and weight
/// act upon it, weakly and without haste. A stroke may as well turn the figure as drive it on, so
/// that its speed need not have a minimum. It starts where its acceleration has risen by half: as
/// with an attack, where it rises most.
Times strokesOf(std::size_t figure)
{
    const auto places = placesOf(figure);
    std::vector<double> accelerations(places.size());
    for (std::size_t i = 3; i + 3 < places.size(); ++i) {
        accelerations[i] =
            std::abs((places[i + 3] - places[i + 2]) - (places[i - 2] - places[i - 3]));
    }
    constexpr std::ptrdiff_t NEAR = 13;   // records: the strokes of eighth notes are 38 apart
    constexpr std::ptrdiff_t BEFORE = 27; // records
    const auto begin =
        accelerations.begin() + static_cast<std::ptrdiff_t>(FIRST_NOTE * RECORDS_PER_SECOND);
    const auto end = accelerations.begin() +
                     static_cast<std::ptrdiff_t>((LAST_BREATH + 0.4) * RECORDS_PER_SECOND);
    std::vector<double> sorted(begin, end);
    std::sort(sorted.begin(), sorted.end());
    const double weak = 2 * sorted[sorted.size() / 2];
    Times strokes;
    for (auto at = begin; at < end; ++at) {
        if (*at > weak && *at == *std::max_element(at - NEAR, at + NEAR + 1)) {
            const double half = (*at + *std::min_element(at - BEFORE, at)) / 2;
            auto start = at;
            while (*start > half) {
                --start;
            }
            strokes.push_back((static_cast<double>(start - accelerations.begin()) + 0.5) /
                              RECORDS_PER_SECOND);
        }
    }
    return strokes;
}

/// The part of the strokes with which a note begins.
/// \param later  moves the strokes, in seconds
double partTogether(const Times& strokes, const Times& attacks, double later)
{
    const auto together = std::count_if(strokes.begin(), strokes.end(), [&](double stroke) {
        return std::any_of(attacks.begin(), attacks.end(), [&](double attack) {
            return std::abs(stroke + later - attack) <= TOGETHER;
        });
    });
    return static_cast<double>(together) / static_cast<double>(strokes.size());
}

TEST(UnisonTest, EachFigureStrokesAsNotesBegin)
{
    const Times attacks = attacksOf(readOgg(KELPIX_MEDIA_DIR "/sound/magpie_vocal.ogg"));
    ASSERT_GT(attacks.size(), 100u);
    for (std::size_t figure = 0; figure < FIGURES; ++figure) {
        const Times strokes = strokesOf(figure);
        EXPECT_GT(strokes.size(), 80u) << "more than two in three seconds";
        const double together = partTogether(strokes, attacks, 0);
        EXPECT_GE(together, 0.9) << "figure " << figure;
        RecordProperty("figure" + std::to_string(figure), std::to_string(together));
        // Not by chance, as it would be with enough attacks.
        for (const double later : {-0.25, -0.17, 0.17, 0.25}) {
            EXPECT_LT(partTogether(strokes, attacks, later), 0.2)
                << "figure " << figure << ", " << later << " s later";
        }
    }
}

} // namespace
