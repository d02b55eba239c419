#include "ObjText.h"

#include "Bits.h"
#include "ObjModel.h"

#include <cstring>
#include <gmock/gmock.h>
#include <limits>
#include <random>
#include <sys/stat.h>

namespace {

class ObjTextTest : public ObjTest {
protected:
    /// The lines that LineReader gives.
    static std::vector<std::string> lines(const std::string& path)
    {
        obj::LineReader reader(path.c_str());
        std::vector<std::string> found;
        while (const char* line = reader.next()) {
            found.emplace_back(line);
        }
        EXPECT_EQ(reader.next(), nullptr);
        return found;
    }

    /// The lines that fgets gives with a buffer of 1024 bytes, up to the newline or a NUL.
    static std::vector<std::string> expected_lines(const std::string& path)
    {
        std::vector<std::string> found;
        FILE* file = fopen(path.c_str(), "r");
        char line[1024];
        while (fgets(line, sizeof line, file) != nullptr) {
            line[strcspn(line, "\n")] = '\0';
            found.emplace_back(line);
        }
        fclose(file);
        return found;
    }

    /// Reads numbers as "%f %f %f" and by sscanf, and compares all that comes out.
    static void expect_same_floats(const std::string& text)
    {
        float expected[3] = {-7, -8, -9};
        int positions[3] = {0, 0, 0};
        const int count =
            std::max(0, sscanf(text.c_str(), "%f%n %f%n %f%n", &expected[0], &positions[0],
                               &expected[1], &positions[1], &expected[2], &positions[2]));
        float got[3] = {-7, -8, -9};
        const char* p = text.c_str();
        ASSERT_EQ(obj::take_floats(p, got, 3), count) << text;
        for (int i = 0; i < 3; ++i) {
            ASSERT_EQ(bits(got[i]), bits(expected[i])) << text << ", number " << i;
        }
        ASSERT_EQ(p - text.c_str(), count == 0 ? 0 : positions[count - 1]) << text;
    }
};

// ---- Lines --------------------------------------------------------------------------------------

TEST_F(ObjTextTest, LinesEndAtNewlines)
{
    EXPECT_THAT(lines(write("a", "one\n\ntwo\r\nthree")),
                testing::ElementsAre("one", "", "two\r", "three"));
    EXPECT_THAT(lines(write("b", "one\n")), testing::ElementsAre("one"));
    EXPECT_THAT(lines(write("c", "\n")), testing::ElementsAre(""));
    EXPECT_THAT(lines(write("d", "")), testing::ElementsAre());
}

TEST_F(ObjTextTest, ALongLineGoesOnInTheNext)
{
    const std::string a(1023, 'a');
    EXPECT_THAT(lines(write("exact", a + "\nb")), testing::ElementsAre(a, "", "b"));
    EXPECT_THAT(lines(write("short", a.substr(1) + "\nb")), testing::ElementsAre(a.substr(1), "b"));
    EXPECT_THAT(lines(write("long", a + a + "xy\nb\n")), testing::ElementsAre(a, a, "xy", "b"));
    EXPECT_THAT(lines(write("end", a)), testing::ElementsAre(a));
}

TEST_F(ObjTextTest, ALineEndsAtANul)
{
    EXPECT_THAT(lines(write("nul", std::string_view("on\0e\ntwo", 8))),
                testing::ElementsAre("on", "two"));
}

TEST_F(ObjTextTest, LinesAreThoseOfFgetsForAnyFile)
{
    std::mt19937 random(1);
    for (int round = 0; round < 60; ++round) {
        std::string text;
        const std::size_t size = random() % 300000;
        const std::size_t longest = random() % 3000;
        while (text.size() < size) {
            text += std::string(random() % (longest + 1), static_cast<char>('a' + random() % 26));
            text += random() % 20 == 0 ? std::string(1, '\0') : "\n";
        }
        const std::string file = write("random", text);
        ASSERT_EQ(lines(file), expected_lines(file)) << "round " << round;
    }
}

TEST_F(ObjTextTest, ALongLineMayBeCutAnywhereInTheReadersBuffer)
{
    // The buffer has 65536 bytes, a line at most 1023.
    for (std::size_t before = 64500; before < 64530; ++before) {
        const std::string text = std::string(before, '\n') + std::string(3000, 'x') + "\nend";
        const std::string file = write("cut", text);
        ASSERT_EQ(lines(file), expected_lines(file)) << before;
    }
}

TEST_F(ObjTextTest, OnlyRegularFilesHaveLines)
{
    const std::string pipe = path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string folder = path("");
    for (const std::string& name : {path("nowhere"), std::string(), folder, pipe}) {
        obj::LineReader reader(name.c_str());
        EXPECT_FALSE(reader.is_open()) << name;
        EXPECT_EQ(reader.next(), nullptr) << name;
    }
}

// ---- Words --------------------------------------------------------------------------------------

TEST_F(ObjTextTest, WordsAreSeparatedByTheBlanksOfTheCLocale)
{
    const char* text = " \t\v\f\r\nmap_Kd\ttex\xA0ture.png ";
    EXPECT_EQ(obj::take_word(text), "map_Kd");
    EXPECT_EQ(obj::take_word(text), "tex\xA0ture.png");
    EXPECT_STREQ(text, " ");
    EXPECT_EQ(obj::take_word(text), "");
    EXPECT_STREQ(text, " ");
}

TEST_F(ObjTextTest, AnOptionMayRunIntoWhatFollows)
{
    const char* text = "  -clamp \t on";
    EXPECT_TRUE(obj::take_option(text, "-clamp"));
    EXPECT_STREQ(text, "on");
    text = "-s2";
    EXPECT_TRUE(obj::take_option(text, "-s"));
    EXPECT_STREQ(text, "2");
    text = " -clam";
    EXPECT_FALSE(obj::take_option(text, "-clamp"));
    EXPECT_STREQ(text, " -clam");
}

// ---- Numbers ------------------------------------------------------------------------------------

TEST_F(ObjTextTest, FloatsOfEveryFormAreThoseOfSscanf)
{
    for (const char* text : {"",
                             " ",
                             "1",
                             "-1",
                             "+1",
                             "1.5 2.5 3.5",
                             "1.5,2.5",
                             ".5 5. .",
                             "-.5 +.5 -",
                             "1e3 1E-3 1e+3",
                             "1e 2 3",
                             "1e+ 2",
                             "1e+x",
                             "1ex",
                             "1e5.5 2",
                             "1.2.3.4",
                             "--1",
                             "+-1",
                             "0x10 0x1p3 0x",
                             "0x1.8 0xg",
                             "0x.",
                             "inf -inf +infinity",
                             "infi",
                             "INF nan",
                             "NaN 1",
                             "nan(1) 2",
                             "in",
                             "nax",
                             "1 2 x",
                             "1\r",
                             "\t1\v2\f3",
                             "0",
                             "-0",
                             "-0.0 0e5 .0e-99",
                             "00001",
                             "1_000",
                             "16777217",
                             "16777219",
                             "0.1 0.2 0.3",
                             "340282346638528859811704183484516925440",
                             "3.4028235677973366e38 3.4028235677973362e38",
                             "1e39 -1e39 1e-50",
                             "1e-45 1e-46 7e-46",
                             "1.17549429e-38 1.1754943e-38",
                             "8388609.5 8388610.5 -8388609.5",
                             "1.00000005960464477539062500000001 1.000000059604644775390625",
                             "9007199254740993 9007199254740992",
                             "123456789012345678901234567890",
                             "0.000000000000000000000000000000000000000000000000000001",
                             "1e99999999999999999999 1e-99999999999999999999",
                             "1e22 1e23 1e-22",
                             "18446744073709551616",
                             "99999999999999999999.9",
                             "2.3e-22 2.3e-21",
                             "1e+22 1e 1"}) {
        expect_same_floats(text);
    }
}

TEST_F(ObjTextTest, RandomDecimalsAreThoseOfSscanfToTheBit)
{
    std::mt19937_64 random(4);
    for (int round = 0; round < 200000; ++round) {
        std::string text;
        for (int number = 0; number < 3; ++number) {
            text += random() % 3 == 0 ? "-" : "";
            for (auto n = random() % (random() % 8 == 0 ? 25 : 8); n > 0; --n) {
                text += static_cast<char>('0' + random() % 10);
            }
            text += random() % 4 == 0 ? "" : ".";
            for (auto n = random() % (random() % 8 == 0 ? 30 : 10); n > 0; --n) {
                text += static_cast<char>('0' + random() % 10);
            }
            if (random() % 4 == 0) {
                text += 'e';
                text += std::to_string(static_cast<int>(random() % 90) - 45);
            }
            text += ' ';
        }
        expect_same_floats(text);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_F(ObjTextTest, NumbersHalfWayBetweenFloatsAreRoundedOnce)
{
    std::mt19937_64 random(6);
    for (int round = 0; round < 20000; ++round) {
        const auto value = std::bit_cast<float>(
            static_cast<std::uint32_t>((100 + random() % 60) << 23 | (random() & 0x7FFFFF)));
        const double next =
            static_cast<double>(std::nextafterf(value, std::numeric_limits<float>::infinity()));
        const double middle = (static_cast<double>(value) + next) / 2;
        char text[400];
        for (const int digits : {15, 16, 17, 18, 60}) {
            snprintf(text, sizeof text, "%.*g %.*f", digits, middle, digits, middle);
            expect_same_floats(text);
            if (HasFatalFailure()) {
                return;
            }
        }
    }
}

TEST_F(ObjTextTest, RandomTextIsReadAsSscanfReadsIt)
{
    static constexpr char ALPHABET[] = "0123456789..--++eExXpPinfatyNA(), \t";
    std::mt19937 random(8);
    for (int round = 0; round < 300000; ++round) {
        std::string text;
        for (auto n = random() % 14; n > 0; --n) {
            text += ALPHABET[random() % (sizeof ALPHABET - 1)];
        }
        expect_same_floats(text);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_F(ObjTextTest, IntegersSaturate)
{
    const auto value = [](const char* text) {
        int got = 77;
        EXPECT_TRUE(obj::take_int(text, got)) << text;
        EXPECT_STREQ(text, "/");
        return got;
    };
    EXPECT_EQ(value("0/"), 0);
    EXPECT_EQ(value("-0/"), 0);
    EXPECT_EQ(value("+12/"), 12);
    EXPECT_EQ(value("-12/"), -12);
    EXPECT_EQ(value("0000000000000000000000000000012/"), 12);
    EXPECT_EQ(value("2147483647/"), INT_MAX);
    EXPECT_EQ(value("2147483648/"), INT_MAX);
    EXPECT_EQ(value("-2147483648/"), INT_MIN);
    EXPECT_EQ(value("-2147483649/"), INT_MIN);
    EXPECT_EQ(value("9999999999999999999/"), INT_MAX);
    EXPECT_EQ(value("18446744073709551617/"), INT_MAX);
    EXPECT_EQ(value("-99999999999999999999999999/"), INT_MIN);
    int untouched = 5;
    for (const char* const text : {"", "-", "+", "x", " 1", "+-1", "/1"}) {
        const char* p = text;
        EXPECT_FALSE(obj::take_int(p, untouched));
        EXPECT_EQ(p, text);
    }
    EXPECT_EQ(untouched, 5);
}

} // namespace
