#include "ReadSound.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace {

constexpr int RECORDS_PER_SECOND = 90;
constexpr int UPDATES_PER_SECOND = 40;
constexpr std::size_t FIGURES = 3;
constexpr double PHRASE = 3.375;

std::string content(const std::string& name)
{
    std::ifstream file(std::string(KELPIX_MEDIA_DIR "/") + name, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

struct Recording {
    std::vector<std::vector<std::string>> words;

    std::size_t size() const { return words.size(); }

    double number(std::size_t record, std::size_t word) const
    {
        return std::atof(words[record][word].c_str());
    }

    /// Where the scene puts a figure: the recorded position, scaled, at the figure's own offset.
    std::array<double, 2> world(std::size_t record, std::size_t figure) const
    {
        constexpr double OFFSETS[] = {0.60, 0.55, 0.50};
        return {0.45 * number(record, 1 + 6 * figure) + OFFSETS[figure],
                0.45 * number(record, 2 + 6 * figure) - 0.1};
    }
};

Recording readRecording(const std::string& name)
{
    Recording recording;
    std::istringstream text(content(name));
    for (std::string line; std::getline(text, line);) {
        std::istringstream words(line);
        auto& record = recording.words.emplace_back();
        for (std::string word; words >> word;) {
            record.push_back(word);
        }
    }
    return recording;
}

const Recording& dance()
{
    static const Recording recording = readRecording("data/dance.txt");
    return recording;
}

const Track& voice()
{
    static const Track track = readOgg(KELPIX_MEDIA_DIR "/sound/magpie_vocal.ogg");
    return track;
}

/// The number of records that the scene's clock counts: that of the shortest recording.
std::size_t steps()
{
    return dance().size() - 1;
}

double distance(std::size_t record, std::size_t a, std::size_t b)
{
    const auto p = dance().world(record, a);
    const auto q = dance().world(record, b);
    return std::hypot(p[0] - q[0], p[1] - q[1]);
}

/// A figure's movement at each update of the scene, which looks at the record that the voice's
/// clock points to.
std::vector<std::array<double, 2>> velocities(std::size_t figure)
{
    std::vector<std::array<double, 2>> all;
    const std::size_t updates = steps() * UPDATES_PER_SECOND / RECORDS_PER_SECOND;
    auto before = dance().world(0, figure);
    for (std::size_t i = 1; i <= updates; ++i) {
        const double fraction = static_cast<double>(i) / static_cast<double>(updates);
        const auto now = dance().world(
            static_cast<std::size_t>(std::ceil(static_cast<double>(steps()) * fraction)), figure);
        all.push_back({now[0] - before[0], now[1] - before[1]});
        before = now;
    }
    return all;
}

TEST(MocapIndexTest, NamesTwoRecordingsOfThreeSensors)
{
    EXPECT_EQ(content("data/mocap.txt"), "MOCAP\n2 3\ndata/dance.txt\ndata/rehearsal.txt\n");
}

class RecordingTest : public testing::TestWithParam<const char*> {};

TEST_P(RecordingTest, HasTwentyFiveNumbersOnEachLineAndOneNewlineAtTheEnd)
{
    const std::string text = content(GetParam());
    ASSERT_GT(text.size(), 2u);
    EXPECT_EQ(text.back(), '\n');
    EXPECT_NE(text[text.size() - 2], '\n');
    const Recording recording = readRecording(GetParam());
    for (std::size_t i = 0; i < recording.size(); ++i) {
        ASSERT_EQ(recording.words[i].size(), 25u) << "record " << i;
        for (const std::string& word : recording.words[i]) {
            char* end = nullptr;
            std::strtod(word.c_str(), &end);
            ASSERT_EQ(*end, '\0') << word;
            ASSERT_NE(word.find_first_of("0123456789"), std::string::npos) << word;
        }
        EXPECT_NEAR(recording.number(i, 0), static_cast<double>(i) / RECORDS_PER_SECOND, 1e-4);
        for (std::size_t k = 0; k < FIGURES; ++k) {
            EXPECT_LE(std::abs(recording.number(i, 6 + 6 * k)), 180) << "a heading in degrees";
        }
        for (std::size_t word = 19; word < 25; ++word) {
            EXPECT_EQ(recording.words[i][word], "0");
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Both, RecordingTest,
                         testing::Values("data/dance.txt", "data/rehearsal.txt"));

TEST(RecordingsTest, LastAsLongAsTheVoiceAndTheDanceOneRecordLonger)
{
    // At the end of the voice the clock reaches the number of the rehearsal's records; the figures
    // follow the dance, which has a record there.
    const auto records =
        static_cast<std::size_t>(std::lround(voice().seconds() * RECORDS_PER_SECOND));
    EXPECT_EQ(readRecording("data/rehearsal.txt").size(), records);
    EXPECT_EQ(dance().size(), records + 1);
}

TEST(DanceTest, WaitsBelowThePictureBeforeAndAfter)
{
    for (std::size_t i = 0; i < dance().size(); ++i) {
        const double seconds = static_cast<double>(i) / RECORDS_PER_SECOND;
        if (seconds > 3 && seconds < 119) {
            continue;
        }
        for (std::size_t k = 0; k < FIGURES; ++k) {
            for (std::size_t word = 1; word <= 3; ++word) {
                ASSERT_EQ(dance().words[i][6 * k + word], "0") << "record " << i;
            }
        }
    }
}

TEST(DanceTest, KeepsToTheStage)
{
    for (std::size_t i = 0; i < dance().size(); ++i) {
        const double seconds = static_cast<double>(i) / RECORDS_PER_SECOND;
        for (std::size_t k = 0; k < FIGURES; ++k) {
            const auto p = dance().world(i, k);
            ASSERT_GE(p[0], 0.12) << "record " << i;
            ASSERT_LE(p[0], 0.88) << "record " << i;
            ASSERT_LE(p[1], 0.88) << "record " << i;
            if (seconds > 3 + PHRASE && seconds < 111) {
                ASSERT_GE(p[1], 0.22) << "record " << i;
            }
        }
    }
}

TEST(DanceTest, MovesAtTheSpeedOfAJellyfish)
{
    std::vector<double> moving;
    for (std::size_t k = 0; k < FIGURES; ++k) {
        for (const auto& v : velocities(k)) {
            const double speed = std::hypot(v[0], v[1]);
            ASSERT_LE(speed, 0.012);
            if (speed > 1e-4) {
                moving.push_back(speed);
            }
        }
    }
    std::sort(moving.begin(), moving.end());
    EXPECT_GE(moving[moving.size() / 2], 0.004);
    EXPECT_LE(moving[moving.size() * 9 / 10], 0.008);
    EXPECT_GT(moving.size(), FIGURES * 120 * UPDATES_PER_SECOND * 8 / 10) << "it hardly ever rests";
}

TEST(DanceTest, ChangesItsSpeedSmoothly)
{
    for (std::size_t k = 0; k < FIGURES; ++k) {
        for (std::size_t i = 1; i + 1 < dance().size(); ++i) {
            const auto a = dance().world(i - 1, k);
            const auto b = dance().world(i, k);
            const auto c = dance().world(i + 1, k);
            for (std::size_t axis = 0; axis < 2; ++axis) {
                ASSERT_LT(std::abs(a[axis] - 2 * b[axis] + c[axis]), 0.0007) << "record " << i;
            }
        }
    }
}

TEST(DanceTest, HoldsItsPlaceExactlyWhereItRestsAndSinksUpright)
{
    for (std::size_t k = 0; k < FIGURES; ++k) {
        // The lean of the body: five degrees an update against the way, up to 40 degrees.
        double tilt = 0;
        const auto all = velocities(k);
        std::size_t phrases = 0;
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (std::abs(all[i][0]) > 1e-9) {
                const double step = all[i][0] < 0 ? 5 : -5;
                tilt = std::clamp(tilt + step, -40.0, 40.0);
            }
            const double seconds = static_cast<double>(i + 1) / UPDATES_PER_SECOND;
            const double untilPhrase = std::fmod(seconds - 3, PHRASE) - PHRASE;
            if (seconds > 3 + PHRASE && seconds < 111 && untilPhrase > -0.7) {
                ASSERT_LE(std::abs(all[i][0]), 1e-9) << seconds;
                ASSERT_LE(std::abs(tilt), 10) << seconds;
                ++phrases;
            }
        }
        EXPECT_GT(phrases, 100u);
    }
}

TEST(DanceTest, KeepsThreeSchoolsApartAndLetsThemMergeOnceAVerse)
{
    std::vector<double> nearest;
    for (double verse = 3; verse + 27 <= 111.01; verse += 27) {
        bool merged = false;
        const auto begin = static_cast<std::size_t>((verse + PHRASE) * RECORDS_PER_SECOND);
        const auto end = static_cast<std::size_t>((verse + 27) * RECORDS_PER_SECOND);
        for (std::size_t i = begin; i < end; ++i) {
            const std::array<double, 3> apart = {distance(i, 0, 1), distance(i, 1, 2),
                                                 distance(i, 0, 2)};
            merged = merged || *std::max_element(apart.begin(), apart.end()) <= 0.15;
            nearest.push_back(*std::min_element(apart.begin(), apart.end()));
        }
        EXPECT_TRUE(merged) << "verse at " << verse << " s";
    }
    std::sort(nearest.begin(), nearest.end());
    EXPECT_NEAR(nearest[nearest.size() / 2], 0.2, 0.05);
}

/// A copy with each value replaced by the mean of the values up to \p reach away.
std::vector<double> smoothed(const std::vector<double>& values, std::size_t reach)
{
    std::vector<double> result;
    for (std::size_t i = 0; i < values.size(); ++i) {
        double sum = 0;
        std::size_t count = 0;
        for (std::size_t j = i < reach ? 0 : i - reach; j < std::min(values.size(), i + reach + 1);
             ++j) {
            sum += values[j];
            ++count;
        }
        result.push_back(sum / static_cast<double>(count));
    }
    return result;
}

double correlation(const std::vector<double>& a, const std::vector<double>& b, std::ptrdiff_t shift)
{
    double sa = 0;
    double sb = 0;
    double saa = 0;
    double sbb = 0;
    double sab = 0;
    double n = 0;
    for (std::ptrdiff_t i = 0; i < static_cast<std::ptrdiff_t>(a.size()); ++i) {
        const std::ptrdiff_t j = i + shift;
        if (j < 0 || j >= static_cast<std::ptrdiff_t>(b.size())) {
            continue;
        }
        const double x = a[static_cast<std::size_t>(i)];
        const double y = b[static_cast<std::size_t>(j)];
        sa += x;
        sb += y;
        saa += x * x;
        sbb += y * y;
        sab += x * y;
        n += 1;
    }
    return (sab - sa * sb / n) / std::sqrt((saa - sa * sa / n) * (sbb - sb * sb / n));
}

TEST(DanceTest, StrokesUpwardsWhereThePhrasesOfTheVoiceBegin)
{
    // How much louder the voice has just become, against how fast the figures rise, ten times a
    // second between the first verse and the last.
    constexpr double FROM = 3 + PHRASE;
    constexpr double TO = 111;
    constexpr double STEP = 0.1;
    std::vector<double> onsets;
    std::vector<double> rises;
    for (double t = FROM; t < TO; t += STEP) {
        const double before = decibels(level(voice(), t - 0.3, t));
        const double after = decibels(level(voice(), t, t + 0.3));
        onsets.push_back(std::max(after - before, 0.0));
        const auto i = static_cast<std::size_t>(t * RECORDS_PER_SECOND);
        double rise = 0;
        for (std::size_t k = 0; k < FIGURES; ++k) {
            rise += dance().world(i + 27, k)[1] - dance().world(i, k)[1];
        }
        rises.push_back(std::max(rise, 0.0));
    }
    onsets = smoothed(onsets, 2);
    rises = smoothed(rises, 2);
    double best = -1;
    std::ptrdiff_t bestShift = 0;
    for (std::ptrdiff_t shift = -16; shift <= 16; ++shift) {
        const double c = correlation(onsets, rises, shift);
        if (c > best) {
            best = c;
            bestShift = shift;
        }
    }
    EXPECT_GT(best, 0.5);
    EXPECT_GE(bestShift, 0) << "the figures answer the voice";
    EXPECT_LE(bestShift, 5) << "and do so within half a second";
}

} // namespace
