#include "CheckRecordings.h"

#include "CheckMotion.h"
#include "CheckRecording.h"
#include "Choreography.h"
#include "Rates.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

namespace media {

namespace {

constexpr int SHOWN = static_cast<int>(FIGURES);

constexpr const char* ENDS_AT_ONCE = "the scene ends as it starts, with status 0";

/// The content of data/mocap.txt.
struct Index {
    int recordings = 0;
    int sensors = 0; ///< kept of each recording
    std::vector<std::string> names;
};

/// Reads data/mocap.txt as the scene does.
/// \return whether the scene goes on to read the recordings
bool readIndex(const std::filesystem::path& path, Index& index, FileReport& report)
{
    if (!checkReadable(path, Mark::stops, ENDS_AT_ONCE, report)) {
        return false;
    }
    std::istringstream text(contentOf(path));
    std::string word;
    text >> word;
    if (word != "MOCAP") {
        report.stops(std::string("does not begin with the word MOCAP; ") + ENDS_AT_ONCE);
        return false;
    }
    if (!(text >> index.recordings >> index.sensors)) {
        report.stops("does not say after MOCAP how many recordings there are and how many sensors "
                     "to take of each; the scene ends");
        return false;
    }
    while (text >> word) {
        index.names.push_back(word);
    }
    report.summary = std::to_string(index.recordings) + " recordings, " +
                     std::to_string(index.sensors) + " sensors each";
    return true;
}

/// Remarks on counts that do not fit, and drops names that are not read.
void checkCounts(Index& index, FileReport& report)
{
    const auto wanted = static_cast<std::size_t>(std::max(index.recordings, 0));
    if (index.names.size() < wanted) {
        report.stops("announces " + std::to_string(wanted) + " recordings and names " +
                     std::to_string(index.names.size()) + "; " + ENDS_AT_ONCE);
    } else if (index.names.size() > wanted) {
        report.hint("names more than the " + std::to_string(wanted) +
                    " recordings that it announces; the scene does not read \"" +
                    index.names[wanted] + "\" and what follows");
        index.names.resize(wanted);
    }
    if (index.sensors > SHOWN) {
        report.wrong("asks for " + std::to_string(index.sensors) +
                     " sensors of each recording, which has 3: no step is left, the figures do "
                     "not move");
    }
    const long series = static_cast<long>(wanted) * std::max(index.sensors, 0);
    if (series < SHOWN) {
        report.stops(
            "gives " + std::to_string(series) +
            " sensors in all, and there are 3 figures; the scene ends at its first update");
    }
}

/// The recording that a figure follows, and the sensor in it.
struct Source {
    std::size_t recording;
    std::size_t sensor;
};

/// The series of all recordings are numbered file by file. Figure k follows series k.
Source sourceOf(int figure, const Index& index)
{
    return {static_cast<std::size_t>(figure / index.sensors),
            static_cast<std::size_t>(figure % index.sensors)};
}

/// When the voice ends, the scene's clock reaches a step equal to the length of the shortest
/// recording. A figure whose recording has no record of that number ends the scene.
void checkEnd(const Index& index, const std::vector<Recording>& recordings, std::size_t steps,
              FileReport& report)
{
    for (int figure = 0; figure < SHOWN; ++figure) {
        const std::size_t shown = sourceOf(figure, index).recording;
        if (recordings[shown].positions.size() <= steps) {
            report.stops(
                "at the end of the voice the scene can end, with status 1: " + index.names[shown] +
                ", which is shown, needs more records than the "
                "shortest recording, which has " +
                std::to_string(steps) + "; name a second recording, one record shorter");
            return;
        }
    }
}

void checkRate(std::size_t steps, double seconds, FileReport& report)
{
    constexpr double SAFE = Rates::RECORDS * 0.99;
    const double rate = static_cast<double>(steps) / seconds;
    const std::string right = std::to_string(Rates::RECORDS) + " are right";
    const std::string has = "has " + decimal(rate, 1) + " records for each second of the voice";
    if (rate < Rates::UPDATES) {
        report.wrong(has +
                     ": a record that two updates meet shrinks, so the figures jerk towards "
                     "the lower edge; " +
                     right);
    } else if (rate < SAFE) {
        report.hint(has +
                    ": now and then two updates may meet the same record, and the figures "
                    "jerk; " +
                    right);
    }
}

/// Remarks on a dance that was made for a longer voice: it is played within the voice's time. A
/// recording with more records a second than usual has times that say so.
/// \param steps    records that the scene's clock counts
/// \param seconds  the length of the voice
void checkTempo(const Recording& shown, std::size_t steps, double seconds, FileReport& report)
{
    constexpr double NOTICED = 1.1;
    constexpr double UNBEARABLE = 2;
    const double length = static_cast<double>(steps) / Rates::RECORDS;
    const double tempo = length / seconds;
    const double claimed = static_cast<double>(shown.end) / seconds;
    if (tempo <= NOTICED || (claimed > 1 / NOTICED && claimed < NOTICED)) {
        return;
    }
    const std::string text =
        "the recording lasts " + decimal(length, 1) + " s, the voice " + decimal(seconds, 1) +
        " s: the dance would run " + decimal(tempo, 1) +
        " times as fast; kelpix-media --out DIR --only dance --force makes one as long as the "
        "voice, with --dance TABLE one of your own";
    if (tempo > UNBEARABLE) {
        report.wrong(text);
    } else {
        report.hint(text);
    }
}

/// Remarks on the shortest recording when a shown one is longer by more than one record: the end of
/// that dance is not played.
/// \param shortest  index of that recording
void checkLengths(const Index& index, const std::vector<Recording>& recordings,
                  std::size_t shortest, FileReport& report)
{
    const std::size_t steps = recordings[shortest].positions.size();
    for (int figure = 0; figure < SHOWN; ++figure) {
        const std::size_t shown = sourceOf(figure, index).recording;
        const std::size_t records = recordings[shown].positions.size();
        if (records > steps + 1) {
            report.wrong("has " + std::to_string(steps) + " records and " + index.names[shown] +
                         " has " + std::to_string(records) +
                         ": only the beginning of that dance is played, spread over the whole "
                         "voice; one record less than the dance is right");
            return;
        }
    }
}

void checkPaths(const Index& index, const std::vector<Recording>& recordings, double seconds,
                std::vector<FileReport>& reports)
{
    std::size_t shortest = 0;
    for (std::size_t i = 1; i < recordings.size(); ++i) {
        if (recordings[i].positions.size() < recordings[shortest].positions.size()) {
            shortest = i;
        }
    }
    const std::size_t steps = recordings[shortest].positions.size();
    checkEnd(index, recordings, steps, reports.front());
    checkLengths(index, recordings, shortest, reports[1 + shortest]);
    const double length = seconds > 0 ? seconds : static_cast<double>(steps) / Rates::RECORDS;
    checkRate(steps, length, reports[1 + shortest]);
    const std::size_t shown = sourceOf(0, index).recording;
    checkTempo(recordings[shown], steps, length, reports[1 + shown]);
    for (int figure = 0; figure < SHOWN; ++figure) {
        const Source source = sourceOf(figure, index);
        Motion motion{figure, {}, steps, length};
        for (const auto& record : recordings[source.recording].positions) {
            motion.path.push_back(record[source.sensor]);
        }
        checkMotion(motion, reports[1 + source.recording]);
    }
}

} // namespace

std::vector<FileReport> checkRecordings(const std::filesystem::path& folder, double voiceSeconds)
{
    std::vector<FileReport> reports{{"data/mocap.txt", "", {}}};
    Index index;
    if (!readIndex(folder / reports.front().name, index, reports.front())) {
        return reports;
    }
    checkCounts(index, reports.front());
    std::vector<Recording> recordings;
    for (const std::string& name : index.names) {
        const bool shown = static_cast<long>(recordings.size()) * index.sensors < SHOWN;
        FileReport& report = reports.emplace_back(FileReport{name, "", {}});
        recordings.push_back(readRecording(folder / name, shown, report));
    }
    const bool complete =
        std::all_of(recordings.begin(), recordings.end(),
                    [](const Recording& recording) { return !recording.positions.empty(); });
    const bool moves = index.sensors >= 1 && index.sensors <= SHOWN;
    if (complete && moves && reports.front().mark() < Mark::stops) {
        checkPaths(index, recordings, voiceSeconds, reports);
    }
    return reports;
}

} // namespace media
