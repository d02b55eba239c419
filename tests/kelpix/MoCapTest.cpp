#include "MoCap.h"

#include "Bits.h"
#include "EarlyExit.h"
#include "TempDirectory.h"

#include <climits>
#include <cmath>
#include <limits>
#include <random>
#include <sstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <type_traits>

namespace {

static_assert(!std::is_polymorphic_v<MoCap> && !std::is_polymorphic_v<SensorData>);
static_assert(std::is_same_v<decltype(SensorData::pos), std::vector<Vec3*>>);
static_assert(std::is_same_v<decltype(SensorData::ori), std::vector<Vec3*>>);
static_assert(std::is_same_v<decltype(SensorData::timestep), std::vector<float>>);
static_assert(std::is_same_v<decltype(MoCap::sensorDataList), std::vector<SensorData*>>);

using testing::ElementsAre;
using testing::ExitedWithCode;

/// The words first, first + 1, ... of one record: word w of it reads as first + w.
std::string record(int first)
{
    std::ostringstream words;
    for (int w = 0; w < 25; ++w) {
        words << first + w << ' ';
    }
    words << '\n';
    return words.str();
}

std::vector<float> components(const std::vector<Vec3*>& vectors)
{
    std::vector<float> all;
    for (const Vec3* v : vectors) {
        all.insert(all.end(), {v->x, v->y, v->z});
    }
    return all;
}

std::size_t countOf(const std::string& what, const std::string& text)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
        ++count;
    }
    return count;
}

class MoCapTest : public testing::Test {
protected:
    TempDirectory directory;
    MoCap mocap;
    std::string output;

    /// Reads an index file of this content.
    void read(const std::string& index)
    {
        TempDirectory::write("index.txt", index);
        testing::internal::CaptureStdout();
        const int result = mocap.read("index.txt");
        output = testing::internal::GetCapturedStdout();
        EXPECT_EQ(result, 1);
    }

    /// Reads one data file of this content, keeping three sensors.
    void readData(const std::string& data)
    {
        TempDirectory::write("data.txt", data);
        read("MOCAP 1 3 data.txt");
    }

    const SensorData& series(std::size_t i) const { return *mocap.sensorDataList.at(i); }

    std::vector<std::size_t> lengths() const
    {
        std::vector<std::size_t> all;
        for (const SensorData* s : mocap.sensorDataList) {
            EXPECT_EQ(s->pos.size(), s->ori.size());
            EXPECT_EQ(s->pos.size(), s->timestep.size());
            all.push_back(s->pos.size());
        }
        return all;
    }
};

TEST_F(MoCapTest, ANewRecordingIsEmpty)
{
    EXPECT_TRUE(mocap.sensorDataList.empty());
    EXPECT_EQ(mocap.sound, nullptr);
    EXPECT_EQ(mocap.step, 0);
    EXPECT_EQ(mocap.numSteps, 0);
}

TEST_F(MoCapTest, ARecordIsATimeThreeSensorsAndSixIgnoredWords)
{
    TempDirectory::write("data.txt", record(100) + record(200));
    mocap.step = 5;
    read("MOCAP\n1 3\ndata.txt\n");
    EXPECT_THAT(lengths(), ElementsAre(2, 2, 2));
    EXPECT_EQ(mocap.numSteps, 2);
    EXPECT_EQ(mocap.step, 0);
    EXPECT_THAT(series(0).timestep, ElementsAre(100, 200));
    EXPECT_THAT(series(1).timestep, ElementsAre(100, 200));
    EXPECT_THAT(series(2).timestep, ElementsAre(100, 200));
    EXPECT_THAT(components(series(0).pos), ElementsAre(101, 102, 103, 201, 202, 203));
    EXPECT_THAT(components(series(0).ori), ElementsAre(104, 105, 106, 204, 205, 206));
    EXPECT_THAT(components(series(1).pos), ElementsAre(107, 108, 109, 207, 208, 209));
    EXPECT_THAT(components(series(1).ori), ElementsAre(110, 111, 112, 210, 211, 212));
    EXPECT_THAT(components(series(2).pos), ElementsAre(113, 114, 115, 213, 214, 215));
    EXPECT_THAT(components(series(2).ori), ElementsAre(116, 117, 118, 216, 217, 218));
    EXPECT_EQ(output, "1 mocap datafile, picking 3 sensors only.\n"
                      "Loading mocap file 0, data.txt\n"
                      "File data.txt has 2 lines.\n"
                      "\n\nsize of sensorDataList = 2\n\n");
}

TEST_F(MoCapTest, AnyWhiteSpaceSeparatesWords)
{
    std::string data = record(1) + record(2);
    for (std::size_t i = 0; i < data.size(); ++i) {
        if (data[i] == ' ') {
            data[i] = "\t\n\v\f\r"[i % 5];
        }
    }
    TempDirectory::write("data.txt", " \n" + data);
    read("\n\tMOCAP\r\n1\n\n3 \v data.txt \f\n\n");
    EXPECT_THAT(lengths(), ElementsAre(2, 2, 2));
    EXPECT_THAT(components(series(2).ori), ElementsAre(17, 18, 19, 18, 19, 20));
}

TEST_F(MoCapTest, NumbersAreReadInDoubleAndNarrowed)
{
    const std::vector<std::string> words = {
        "0.1", "-2.5e-3", "1e300", "-1e300", "0x10", "+7.0", "16777217.0000000001", "nan", "inf"};
    std::string data;
    for (std::size_t w = 0; w < 25; ++w) {
        data += words[w % words.size()] + ' ';
    }
    readData(data);
    const auto narrowed = [](double value) { return static_cast<float>(value); };
    EXPECT_THAT(series(0).timestep, ElementsAre(SameBits(0.1f)));
    EXPECT_THAT(components(series(0).pos),
                ElementsAre(SameBits(-2.5e-3f), SameBits(narrowed(INFINITY)),
                            SameBits(narrowed(-INFINITY))));
    // 16777217 lies between two floats; the digits beyond decide, when read as double they do not.
    EXPECT_THAT(components(series(0).ori),
                ElementsAre(SameBits(16.0f), SameBits(7.0f), SameBits(16777216.0f)));
    EXPECT_THAT(components(series(1).pos),
                ElementsAre(SameBits(NAN), SameBits(INFINITY), SameBits(0.1f)));
}

TEST_F(MoCapTest, WordsThatAreNoNumbersReadAsZero)
{
    readData("t x1 2y -- 4 5 6" + record(1));
    EXPECT_THAT(series(0).timestep, ElementsAre(0, 20));
    EXPECT_THAT(components(series(0).pos), ElementsAre(0, 2, 0, 21, 22, 23));
}

TEST_F(MoCapTest, AFileEndsRightAfterItsLastWord)
{
    for (const char* end : {"", "\n", " ", " \r\n\t\v\f\n\n"}) {
        MoCap fresh;
        std::string data = record(1) + record(2);
        data.erase(data.size() - 2);
        TempDirectory::write("data.txt", data + end);
        TempDirectory::write("index.txt", "MOCAP 1 3 data.txt");
        testing::internal::CaptureStdout();
        fresh.read("index.txt");
        EXPECT_THAT(testing::internal::GetCapturedStdout(), testing::HasSubstr("has 2 lines.\n"));
        EXPECT_EQ(fresh.numSteps, 2);
    }
}

TEST_F(MoCapTest, AnIncompleteRecordRepeatsItsLastWord)
{
    readData(record(1) + "50 51 52 53 54");
    EXPECT_THAT(lengths(), ElementsAre(2, 2, 2));
    EXPECT_THAT(series(2).timestep, ElementsAre(1, 50));
    EXPECT_THAT(components(series(0).pos), ElementsAre(2, 3, 4, 51, 52, 53));
    EXPECT_THAT(components(series(0).ori), ElementsAre(5, 6, 7, 54, 54, 54));
    EXPECT_THAT(components(series(2).pos), ElementsAre(14, 15, 16, 54, 54, 54));
}

TEST_F(MoCapTest, AFileWithoutWordsGivesOneRecordOfZeros)
{
    TempDirectory::write("full.txt", record(1) + record(2));
    TempDirectory::write("empty.txt", "");
    TempDirectory::write("blank.txt", " \n\t\n");
    std::filesystem::create_directory("directory");
    read("MOCAP 4 3 full.txt empty.txt blank.txt directory");
    EXPECT_THAT(lengths(), ElementsAre(2, 2, 2, 1, 1, 1, 1, 1, 1, 1, 1, 1));
    for (std::size_t i = 3; i < 12; ++i) {
        EXPECT_THAT(series(i).timestep, ElementsAre(0));
        EXPECT_THAT(components(series(i).pos), ElementsAre(0, 0, 0));
        EXPECT_THAT(components(series(i).ori), ElementsAre(0, 0, 0));
    }
    EXPECT_EQ(mocap.numSteps, 1);
    EXPECT_EQ(countOf("has 1 lines.\n", output), 3u);
}

TEST_F(MoCapTest, ARecordingMayBreakOffAtEveryByte)
{
    const std::string whole = record(1) + record(2);
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        MoCap fresh;
        TempDirectory::write("data.txt", whole.substr(0, size));
        TempDirectory::write("index.txt", "MOCAP 1 3 data.txt");
        testing::internal::CaptureStdout();
        fresh.read("index.txt");
        testing::internal::GetCapturedStdout();
        // The second record counts from its first character on.
        EXPECT_EQ(fresh.numSteps, size > record(1).size() ? 2 : 1) << size;
    }
}

TEST_F(MoCapTest, TheShortestSeriesCounts)
{
    TempDirectory::write("long.txt", record(1) + record(2) + record(3));
    TempDirectory::write("short.txt", record(500));
    read("MOCAP 2 3 long.txt short.txt");
    EXPECT_THAT(lengths(), ElementsAre(3, 3, 3, 1, 1, 1));
    EXPECT_THAT(components(series(3).pos), ElementsAre(501, 502, 503));
    EXPECT_THAT(components(series(5).pos), ElementsAre(513, 514, 515));
    EXPECT_EQ(mocap.numSteps, 1);
    EXPECT_EQ(output, "2 mocap datafile, picking 3 sensors only.\n"
                      "Loading mocap file 0, long.txt\n"
                      "File long.txt has 3 lines.\n"
                      "Loading mocap file 1, short.txt\n"
                      "File short.txt has 1 lines.\n"
                      "\n\nsize of sensorDataList = 1\n\n");
}

TEST_F(MoCapTest, OnlyThreeSensorsAFileAreEverFilled)
{
    TempDirectory::write("data.txt", record(1) + record(2));
    read("MOCAP 2 5 data.txt data.txt");
    EXPECT_THAT(lengths(), ElementsAre(2, 2, 2, 0, 0, 2, 2, 2, 0, 0));
    EXPECT_EQ(mocap.numSteps, 0);
    EXPECT_THAT(output, testing::EndsWith("\n\nsize of sensorDataList = 0\n\n"));
}

TEST_F(MoCapTest, SensorsBeyondTheChosenNumberAreDropped)
{
    TempDirectory::write("a.txt", record(100));
    TempDirectory::write("b.txt", record(200));
    read("MOCAP 2 1 a.txt b.txt");
    EXPECT_THAT(lengths(), ElementsAre(1, 1));
    EXPECT_THAT(components(series(0).pos), ElementsAre(101, 102, 103));
    EXPECT_THAT(components(series(1).pos), ElementsAre(201, 202, 203));
    EXPECT_EQ(mocap.numSteps, 1);
}

TEST_F(MoCapTest, NoSensorsOrNoFilesGiveNoSteps)
{
    TempDirectory::write("data.txt", record(1));
    for (const char* counts : {"1 0 data.txt", "1 -3 data.txt", "0 3 data.txt", "-1 3 data.txt",
                               "none 3 data.txt", ""}) {
        mocap.numSteps = 9;
        read(std::string("MOCAP ") + counts);
        EXPECT_TRUE(mocap.sensorDataList.empty()) << counts;
        EXPECT_EQ(mocap.numSteps, 0) << counts;
    }
}

TEST_F(MoCapTest, CountsArePrintedAsRead)
{
    TempDirectory::write("data.txt", record(1));
    read("MOCAP 1 -3 data.txt");
    EXPECT_EQ(output, "1 mocap datafile, picking -3 sensors only.\n"
                      "Loading mocap file 0, data.txt\n"
                      "File data.txt has 1 lines.\n"
                      "\n\nsize of sensorDataList = 0\n\n");
    read("MOCAP none");
    EXPECT_EQ(output, "0 mocap datafile, picking 0 sensors only.\n"
                      "\n\nsize of sensorDataList = 0\n\n");
}

TEST_F(MoCapTest, AHugeNumberOfSensorsIsBounded)
{
    TempDirectory::write("data.txt", record(1));
    read("MOCAP 2 2147483647 data.txt data.txt");
    EXPECT_EQ(mocap.sensorDataList.size(), 2u * 4096);
    EXPECT_EQ(series(4096 + 2).pos.size(), 1u);
    EXPECT_EQ(mocap.numSteps, 0);
    EXPECT_THAT(output, testing::StartsWith("2 mocap datafile, picking 2147483647 sensors only."));
}

TEST_F(MoCapTest, LongWordsAreCut)
{
    const std::string tail = " 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20 21 22 23 24 25\n";
    // Only the first 4095 characters count: of the ones in the second record none.
    readData("1" + std::string(100000, '0') + tail + std::string(4095, '0') +
             std::string(100000, '1') + tail + std::string(4094, '0') + "12" + tail);
    EXPECT_THAT(series(0).timestep, ElementsAre(INFINITY, 0, 1));
    EXPECT_THAT(components(series(0).pos), ElementsAre(2, 3, 4, 2, 3, 4, 2, 3, 4));
}

TEST_F(MoCapTest, WordsMayHoldAnyByte)
{
    readData(std::string("1\0\xff x ", 6) + record(3));
    EXPECT_THAT(series(0).timestep, ElementsAre(1, 26));
    EXPECT_THAT(components(series(0).pos), ElementsAre(0, 3, 4, 27, 27, 27));
}

/// The time of every record, read by the C library's own formatted input.
std::vector<float> timesByFscanf(const char* path)
{
    std::vector<float> times;
    std::FILE* const file = std::fopen(path, "r");
    char word[1000] = "";
    while (std::feof(file) == 0) {
        for (int w = 0; w < 25; ++w) {
            static_cast<void>(std::fscanf(file, "%999s\n", word) == 1);
            if (w == 0) {
                times.push_back(static_cast<float>(std::atof(word)));
            }
        }
    }
    std::fclose(file);
    return times;
}

TEST_F(MoCapTest, WordsAndTheEndOfTheFileAreThoseOfFscanf)
{
    std::mt19937 random(1);
    constexpr std::string_view BYTES = "0123456789.-ex \n\t\r  \v\f\x85\xa0";
    for (int n = 0; n < 300; ++n) {
        std::string data;
        const std::size_t size = random() % 700;
        for (std::size_t i = 0; i < size; ++i) {
            data += BYTES[random() % BYTES.size()];
        }
        readData(data);
        const std::vector<float> expected = timesByFscanf("data.txt");
        const auto read = series(0).timestep.end() - static_cast<long>(expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i) {
            ASSERT_THAT(read[static_cast<long>(i)], SameBits(expected[i])) << data;
        }
        ASSERT_EQ(countOf("has " + std::to_string(expected.size()) + " lines", output), 1u) << data;
    }
}

TEST_F(MoCapTest, ARecordingOfTwoMinutesIsReadWhole)
{
    std::string data;
    for (int i = 0; i < 10800; ++i) {
        data += record(i);
    }
    readData(data);
    EXPECT_EQ(mocap.numSteps, 10800);
    EXPECT_EQ(series(2).pos[10799]->z, 10799 + 15);
}

using MoCapDeathTest = MoCapTest;

/// In the child process, standard output is standard error: death tests look at the latter.
void readAloud(const char* index)
{
    dup2(STDERR_FILENO, STDOUT_FILENO);
    MoCap mocap;
    mocap.read(index);
    std::fputs("still running\n", stderr);
}

TEST_F(MoCapDeathTest, AnIndexWithoutItsFirstWordEndsTheProcess)
{
    const std::string message = "^No MOCAP specified!\n$";
    EXPECT_EXIT(readAloud("missing.txt"), ExitedWithCode(0), message);
    EXPECT_EXIT(readAloud(nullptr), ExitedWithCode(0), message);
    EXPECT_EXIT(readAloud("/"), ExitedWithCode(0), message);
    EXPECT_EXIT(readAloud("/dev/zero"), ExitedWithCode(0), message);
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    EXPECT_EXIT(readAloud("pipe"), ExitedWithCode(0), message);
    for (const char* content : {"", " \n", "mocap 1 3 x", "MOCAPS 1 3 x", "MOCA 1 3 x"}) {
        TempDirectory::write("index.txt", content);
        EXPECT_EXIT(readAloud("index.txt"), ExitedWithCode(0), message) << content;
    }
}

TEST_F(MoCapDeathTest, ADataFileThatCannotBeOpenedEndsTheProcess)
{
    TempDirectory::write("data.txt", record(1));
    TempDirectory::write("index.txt", "MOCAP 2 3 data.txt missing.txt");
    EXPECT_EXIT(readAloud("index.txt"), ExitedWithCode(0),
                "^2 mocap datafile, picking 3 sensors only\\.\n"
                "Loading mocap file 0, data\\.txt\n"
                "File data\\.txt has 1 lines\\.\n"
                "Loading mocap file 1, missing\\.txt\n"
                "Couldn't read file\\.\n$");
}

TEST_F(MoCapDeathTest, APipeOrADeviceCannotBeOpenedAndKeepsNobodyWaiting)
{
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    TempDirectory::write("index.txt", "MOCAP 1 3 pipe");
    EXPECT_EXIT(readAloud("index.txt"), ExitedWithCode(0), "0, pipe\nCouldn't read file\\.\n$");
    TempDirectory::write("index.txt", "MOCAP 1 3 /dev/zero");
    EXPECT_EXIT(readAloud("index.txt"), ExitedWithCode(0), "zero\nCouldn't read file\\.\n$");
}

TEST_F(MoCapDeathTest, AnIndexThatRunsOutOfPathsEndsTheProcess)
{
    TempDirectory::write("data.txt", record(1));
    TempDirectory::write("index.txt", "MOCAP 2147483647 3 data.txt");
    EXPECT_EXIT(readAloud("index.txt"), ExitedWithCode(0),
                "File data\\.txt has 1 lines\\.\n"
                "Loading mocap file 1, \n"
                "Couldn't read file\\.\n$");
}

TEST_F(MoCapDeathTest, AnIndexMayBreakOffAtEveryByte)
{
    TempDirectory::write("data.txt", record(1));
    const std::string whole = "MOCAP\n1 3\ndata.txt";
    const auto readAndEnd = [] {
        readAloud("index.txt");
        std::exit(0);
    };
    for (std::size_t size = 0; size < whole.size(); ++size) {
        TempDirectory::write("index.txt", whole.substr(0, size));
        // Without the number of files there are none.
        EXPECT_EXIT(readAndEnd(), ExitedWithCode(0),
                    size < 5   ? "^No MOCAP specified!\n$"
                    : size < 7 ? "size of sensorDataList = 0\n"
                               : "Couldn't read file\\.\n$")
            << whole.substr(0, size);
    }
}

TEST_F(MoCapDeathTest, ARecordingThatMemoryCannotHoldCannotBeRead)
{
#ifdef KELPIX_SANITIZED
    GTEST_SKIP() << "the sanitizer's own memory counts too";
#endif
    std::string data;
    for (int i = 0; i < 20000; ++i) {
        data += "1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1 1\n";
    }
    TempDirectory::write("data.txt", data + data + data + data);
    TempDirectory::write("index.txt", "MOCAP 1 3 data.txt");
    const auto readWithLittleMemory = [] {
        std::ifstream usage("/proc/self/statm");
        rlim_t pages = 0;
        usage >> pages;
        const rlim_t limit = pages * 4096 + (rlim_t{8} << 20);
        const rlimit limits{limit, limit};
        setrlimit(RLIMIT_AS, &limits);
        readAloud("index.txt");
    };
    EXPECT_EXIT(readWithLittleMemory(), ExitedWithCode(0), "0, data.txt\nCouldn't read file\\.\n$");
}

TEST(MoCapStepTest, TheStepIsTheCeilingOfTheProduct)
{
    EXPECT_EQ(MoCap::stepAt(1000, 0), 0);
    EXPECT_EQ(MoCap::stepAt(1000, 0.5f), 500);
    EXPECT_EQ(MoCap::stepAt(1000, 0.5001f), 501);
    EXPECT_EQ(MoCap::stepAt(1000, 1e-30f), 1);
    EXPECT_EQ(MoCap::stepAt(1000, 1), 1000) << "one past the last sample";
    EXPECT_EQ(MoCap::stepAt(0, 0.5f), 0);
}

TEST(MoCapStepTest, TheProductIsFormedInSinglePrecision)
{
    // In double precision the product is 1 + 1e-8 or so, whose ceiling is 2.
    const float third = 1.0f / 3.0f;
    ASSERT_GT(3 * static_cast<double>(third), 1);
    EXPECT_EQ(MoCap::stepAt(3, third), 1);
}

TEST(MoCapStepTest, ABadFractionGivesStepZero)
{
    for (const float bad : {NAN, INFINITY, -INFINITY, 1e30f, -1e30f}) {
        EXPECT_EQ(MoCap::stepAt(1000, bad), 0) << bad;
        EXPECT_EQ(MoCap::stepAt(0, bad), 0) << bad;
    }
    EXPECT_EQ(MoCap::stepAt(INT_MAX, 1), 0) << "2147483648 in single precision";
}

} // namespace
