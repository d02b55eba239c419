#include "MoCap.h"

#include "MemoryWords.h"
#include "OpenFile.h"
#include "Rates.h"
#include "TextWords.h"

#include <FL/Fl.H>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

namespace {

constexpr int MAX_SENSORS_PER_FILE = 4096;

/// A word of a file, with its terminator. Every path that can be opened fits.
using Word = std::array<char, 4096>;

/// Reads one word and all white space behind it, as fscanf(file, "%s\n", word) does: after the last
/// word the file is at its end. Only what fits is kept. At the end of the file, and for a null
/// file, the word stays as it was.
/// \return whether there was a word
bool readWord(std::FILE* file, Word& word)
{
    if (file == nullptr || !Files::readWord(file, word)) {
        return false;
    }
    std::ungetc(Files::skipSpace(file), file);
    return true;
}

/// Reads a word as atof does, plain decimal numbers faster.
float readNumber(std::FILE* file, Word& word)
{
    readWord(file, word);
    double number = 0;
    if (!Files::numberOf(word.data(), number)) {
        number = std::atof(word.data());
    }
    return static_cast<float>(number);
}

Vec3 readVector(std::FILE* file, Word& word)
{
    const float x = readNumber(file, word);
    const float y = readNumber(file, word);
    const float z = readNumber(file, word);
    return {x, y, z};
}

[[noreturn]] void stop(const char* message)
{
    std::puts(message);
    std::exit(0);
}

/// Appends a new element, which the list owns. It is freed when the list cannot grow.
template<typename Element, typename... Values>
void append(std::vector<Element*>& list, const Values&... values)
{
    auto element = std::make_unique<Element>(values...);
    list.push_back(element.get());
    static_cast<void>(element.release());
}

/// Reads all records of a data file into the series from \p list[first] on. Sensors without a
/// series are skipped.
///
/// Fixed behavior: a record always has three sensors, whatever number of sensors the index names.
/// Pinned by MoCapTest.OnlyThreeSensorsAFileAreEverFilled,
/// MoCapTest.SensorsBeyondTheChosenNumberAreDropped; do not correct.
///
/// Fixed behavior: the words that are missing from the last record repeat its last word, and a file
/// without words has one record of zeros. Pinned by MoCapTest.AnIncompleteRecordRepeatsItsLastWord,
/// MoCapTest.AFileWithoutWordsGivesOneRecordOfZeros; do not correct.
/// \return the number of records, at least 1
int readRecords(std::FILE* file, const std::vector<SensorData*>& list, std::size_t first)
{
    constexpr std::size_t RECORDED_SENSORS = 3;
    constexpr int IGNORED_WORDS = 6;
    Word word{};
    int records = 0;
    while (std::feof(file) == 0 && std::ferror(file) == 0) {
        const float time = readNumber(file, word);
        for (std::size_t k = 0; k < RECORDED_SENSORS; ++k) {
            const Vec3 pos = readVector(file, word);
            const Vec3 ori = readVector(file, word);
            if (first + k < list.size()) {
                SensorData& series = *list[first + k];
                series.timestep.push_back(time);
                append(series.pos, pos);
                append(series.ori, ori);
            }
        }
        for (int i = 0; i < IGNORED_WORDS; ++i) {
            readWord(file, word);
        }
        ++records;
    }
    return records;
}

} // namespace

SensorData::~SensorData()
{
    for (const Vec3* v : pos) {
        delete v;
    }
    for (const Vec3* v : ori) {
        delete v;
    }
}

MoCap::~MoCap()
{
    Fl::remove_timeout(dataTimer, this);
    for (const SensorData* series : sensorDataList) {
        delete series;
    }
}

int MoCap::read(const char* indexPath)
{
    // A directory reads as an empty file, here and below.
    const Files::Handle index = Files::openRegularOrFolder(indexPath);
    Word word{};
    readWord(index.get(), word);
    if (std::strcmp(word.data(), "MOCAP") != 0) {
        stop("No MOCAP specified!");
    }

    int numFiles = 0;
    int sensorsPerFile = 0;
    std::fscanf(index.get(), "%d %d\n", &numFiles, &sensorsPerFile);
    std::printf("%d mocap datafile, picking %d sensors only.\n", numFiles, sensorsPerFile);
    const auto kept = static_cast<std::size_t>(std::clamp(sensorsPerFile, 0, MAX_SENSORS_PER_FILE));

    for (int f = 0; f < numFiles; ++f) {
        Word path{};
        readWord(index.get(), path);
        std::printf("Loading mocap file %d, %s\n", f, path.data());
        const Files::Handle file = Files::openRegularOrFolder(path.data());
        if (file == nullptr) {
            stop("Couldn't read file.");
        }
        int records = 0;
        try {
            for (std::size_t k = 0; k < kept; ++k) {
                append(sensorDataList);
            }
            records = readRecords(file.get(), sensorDataList, kept * static_cast<std::size_t>(f));
        } catch (const std::bad_alloc&) {
            stop("Couldn't read file.");
        }
        std::printf("File %s has %d lines.\n", path.data(), records);
    }

    step = 0;
    numSteps = sensorDataList.empty() ? 0 : std::numeric_limits<int>::max();
    for (const SensorData* series : sensorDataList) {
        numSteps = std::min(numSteps, static_cast<int>(series->pos.size()));
    }
    // Fixed behavior: the last message about a recording says sensorDataList and prints the number
    // of steps. Pinned by MoCapTest.ARecordIsATimeThreeSensorsAndSixIgnoredWords; do not correct.
    std::printf("\n\nsize of sensorDataList = %d\n\n", numSteps);
    return 1;
}

int MoCap::stepAt(int numSteps, float fraction)
{
    const float position = static_cast<float>(numSteps) * fraction;
    const double rounded = std::ceil(static_cast<double>(position));
    const bool fits =
        rounded >= std::numeric_limits<int>::min() && rounded <= std::numeric_limits<int>::max();
    return fits ? static_cast<int>(rounded) : 0;
}

void dataTimer(void* arg)
{
    if (arg != nullptr) {
        MoCap& mocap = *static_cast<MoCap*>(arg);
        const float fraction = mocap.sound == nullptr ? 0 : mocap.sound->getPlaybackOffset();
        mocap.step = MoCap::stepAt(mocap.numSteps, fraction);
    }
    Fl::repeat_timeout(1.0 / Rates::CLOCK_TICKS, dataTimer, arg);
}
