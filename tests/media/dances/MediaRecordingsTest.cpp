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

/// When the figures leave: four beats and a half into the coda.
constexpr double LEAVING = 111 + 4.5 * PHRASE / 4;
constexpr double ENTERED = 3 + PHRASE; // the first phrase brings the figures onto the stage

TEST(DanceTest, UsesTheWholeStageAndKeepsToIt)
{
    // 0.0189 to 0.9811 are visible, in five columns and five rows. Tentacles hang into the lowest.
    std::array<std::array<int, 5>, 5> visits{};
    for (std::size_t i = 0; i < dance().size(); ++i) {
        const double seconds = static_cast<double>(i) / RECORDS_PER_SECOND;
        for (std::size_t k = 0; k < FIGURES; ++k) {
            const auto p = dance().world(i, k);
            ASSERT_GE(p[0], 0.08) << "record " << i;
            ASSERT_LE(p[0], 0.92) << "record " << i;
            if (seconds > ENTERED && seconds < LEAVING) {
                ASSERT_GE(p[1], 0.18) << "record " << i;
                ASSERT_LE(p[1], 0.94) << "record " << i;
                const auto column = static_cast<std::size_t>((p[0] - 0.0189) / 0.9622 * 5);
                const auto row = static_cast<std::size_t>((p[1] - 0.0189) / 0.9622 * 5);
                ++visits[row][column];
            }
        }
    }
    for (std::size_t row = 1; row < 5; ++row) {
        for (std::size_t column = 0; column < 5; ++column) {
            EXPECT_GT(visits[row][column], RECORDS_PER_SECOND / 2)
                << "row " << row << ", column " << column;
        }
    }
}

TEST(DanceTest, MovesAtTheSpeedOfAJellyfish)
{
    std::vector<double> moving;
    for (std::size_t k = 0; k < FIGURES; ++k) {
        const auto all = velocities(k);
        for (std::size_t i = 3 * UPDATES_PER_SECOND;
             i < static_cast<std::size_t>(LEAVING * UPDATES_PER_SECOND); ++i) {
            moving.push_back(std::hypot(all[i][0], all[i][1]));
            ASSERT_LE(moving.back(), 0.012);
        }
    }
    std::sort(moving.begin(), moving.end());
    EXPECT_GE(moving[moving.size() / 2], 0.003);
    EXPECT_LE(moving[moving.size() * 9 / 10], 0.008);
}

TEST(DanceTest, ChangesItsSpeedSmoothly)
{
    for (std::size_t k = 0; k < FIGURES; ++k) {
        for (std::size_t i = 1; i + 1 < dance().size(); ++i) {
            const auto a = dance().world(i - 1, k);
            const auto b = dance().world(i, k);
            const auto c = dance().world(i + 1, k);
            if (std::max({a[1], b[1], c[1]}) > 1.15) {
                continue; // out of sight, from where it goes home at once
            }
            for (std::size_t axis = 0; axis < 2; ++axis) {
                ASSERT_LT(std::abs(a[axis] - 2 * b[axis] + c[axis]), 0.0007) << "record " << i;
            }
        }
    }
}

TEST(DanceTest, NeverLingers)
{
    // In little more than two seconds, rests included, a figure has always been in two places more
    // than 0.1 apart: no circle of a radius of 0.05 holds it for so long.
    constexpr std::size_t WINDOW = 2 * RECORDS_PER_SECOND + 5;
    for (std::size_t k = 0; k < FIGURES; ++k) {
        for (std::size_t i = 290;
             i + WINDOW < static_cast<std::size_t>(LEAVING * RECORDS_PER_SECOND); i += 4) {
            double extent = 0;
            for (std::size_t a = i; a <= i + WINDOW; a += 5) {
                for (std::size_t b = a + 5; b <= i + WINDOW; b += 3) {
                    const auto p = dance().world(a, k);
                    const auto q = dance().world(b, k);
                    extent = std::max(extent, std::hypot(p[0] - q[0], p[1] - q[1]));
                }
            }
            ASSERT_GT(extent, 0.1) << "figure " << k << ", record " << i;
        }
    }
}

TEST(DanceTest, SchoolsMergeAndPartInEachVerse)
{
    std::vector<double> nearest;
    for (double verse = 3; verse + 27 <= 111.01; verse += 27) {
        double together = 9; // the smallest circle of all three
        double apart = 0;
        int meetings = 0; // of two
        bool close = false;
        const auto begin = static_cast<std::size_t>((verse + PHRASE) * RECORDS_PER_SECOND);
        const auto end = static_cast<std::size_t>((verse + 27) * RECORDS_PER_SECOND);
        for (std::size_t i = begin; i < end; ++i) {
            const std::array<double, 3> between = {distance(i, 0, 1), distance(i, 1, 2),
                                                   distance(i, 0, 2)};
            const auto [least, most] = std::minmax_element(between.begin(), between.end());
            together = std::min(together, *most);
            apart = std::max(apart, *most);
            nearest.push_back(*least);
            if (!close && *least < 0.1) {
                close = true;
                ++meetings;
            } else if (*least > 0.25) {
                close = false; // schools of two figures so far apart are two schools
            }
        }
        EXPECT_LE(together, 0.15) << "verse at " << verse << " s";
        EXPECT_GE(apart, 0.6) << "verse at " << verse << " s";
        EXPECT_GE(meetings, 2) << "verse at " << verse << " s";
    }
    std::sort(nearest.begin(), nearest.end());
    EXPECT_NEAR(nearest[nearest.size() / 2], 0.2, 0.06);
}

TEST(DanceTest, RisesTogetherAndLeavesThroughTheTop)
{
    const auto gathered = static_cast<std::size_t>((LEAVING - 0.1) * RECORDS_PER_SECOND);
    const auto gone = static_cast<std::size_t>((LEAVING + 1.5) * RECORDS_PER_SECOND);
    for (std::size_t k = 0; k < FIGURES; ++k) {
        EXPECT_GT(dance().world(gathered, k)[1], 0.55);
        EXPECT_LT(distance(gathered, k, (k + 1) % FIGURES), 0.2);
        EXPECT_GT(dance().world(gone, k)[1], 1.15) << "no tentacle is left in the picture";
    }
}

} // namespace
