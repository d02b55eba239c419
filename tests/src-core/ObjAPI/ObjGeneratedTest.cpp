#include "ObjAPI.h"

#include "ObjModel.h"
#include "ObjReference.h"

#include <cstdio>
#include <random>

namespace {

/// Models that are made up, read by the library and by the plain reader of ObjReference.h.
class ObjGeneratedTest : public ObjTest {
protected:
    std::size_t below(std::size_t n) { return random_() % n; }
    bool chance(int percent) { return below(100) < static_cast<std::size_t>(percent); }

    template<typename Choice>
    std::string one_of(std::initializer_list<Choice> choices)
    {
        return *(choices.begin() + below(choices.size()));
    }

    std::string number()
    {
        char text[64];
        switch (below(6)) {
        case 0:
            return std::to_string(static_cast<int>(below(9)) - 4);
        case 1:
            snprintf(text, sizeof text, "%.3g", static_cast<double>(below(1000000)) * 1e-9);
            return text;
        case 2:
            return one_of({"1e2", "-.5", "+3", "1e", "0x2", "nan", "inf", "x", "1e-46", "1,5"});
        default:
            snprintf(text, sizeof text, "%.6f", static_cast<double>(below(2000000)) * 1e-5 - 10);
            return text;
        }
    }

    std::string numbers(int usual)
    {
        std::string text;
        const int count = chance(5) ? static_cast<int>(below(5)) : usual;
        for (int i = 0; i < count; ++i) {
            text += one_of({" ", " ", " ", "  ", "\t"}) + number();
        }
        return text;
    }

    /// An index that is mostly there.
    std::string index(int count)
    {
        if (chance(4)) {
            return one_of({"0", "99999", "-99999", "2147483647", "-2147483648", "4294967297", "+1",
                           "9999999999999999999999", "x", "", "1.5"});
        }
        const int i = 1 + static_cast<int>(below(static_cast<std::size_t>(count) + 1));
        return std::to_string(chance(30) ? -i : i);
    }

    std::string corner(int vc, int tc, int nc)
    {
        switch (below(8)) {
        case 0:
            return index(vc);
        case 1:
            return index(vc) + "/" + index(tc);
        case 2:
            return index(vc) + "//" + index(nc);
        case 3:
            return chance(20) ? one_of({"1/", "1//", "/1", "1/2/3/4", "//", "#", "1/x/1", "2x/1"})
                              : index(vc);
        default:
            return index(vc) + "/" + index(tc) + "/" + index(nc);
        }
    }

    std::string newline() { return one_of({"\n", "\n", "\n", "\r\n", " \n", "\n\n"}); }

    std::string library()
    {
        std::string text;
        for (std::size_t n = below(40); n > 0; --n) {
            const std::string kind = one_of({"Kd", "Ka", "Ke", "Ks", "Ns"});
            switch (below(6)) {
            case 0:
                text += "newmtl " + one_of({"a", "b", "c", "d e", ""});
                break;
            case 1:
                text += kind + numbers(3);
                break;
            case 2:
                text += "d ";
                text += number();
                break;
            case 3:
                text += one_of({"# Kd 1 1 1", "illum 2", "map_Bump x.png", "Tr 1", "  "});
                break;
            default:
                text += "map_" + kind;
                for (std::size_t i = below(5); i > 0; --i) {
                    text += one_of({" ", "\t "});
                    switch (below(4)) {
                    case 0:
                        text += "-clamp" + one_of({" on", " off", "on", ""});
                        break;
                    case 1:
                        text += "-s";
                        text += numbers(static_cast<int>(below(4)));
                        break;
                    case 2:
                        text += "-o";
                        text += numbers(static_cast<int>(below(4)));
                        break;
                    default:
                        text += one_of({"t.png", "u.jpg", "v.tga", "-bm", "3d.png", "x\r y"});
                    }
                }
            }
            text += newline();
        }
        return text;
    }

    std::string object()
    {
        std::string text = chance(80) ? "mtllib one.mtl\n" : "";
        int vc = 0;
        int tc = 0;
        int nc = 0;
        for (std::size_t n = below(150); n > 0; --n) {
            switch (below(16)) {
            case 0:
                text += "s " + one_of({"0", "1", "2", "off", "3", "-1", ""});
                break;
            case 1:
                text += "usemtl " + one_of({"a", "b", "c", "d", "", "a b"});
                break;
            case 2:
                text +=
                    "mtllib " + one_of({"one.mtl", "two.mtl", "gone.mtl", "", "two.mtl one.mtl"});
                break;
            case 3:
                text += "l";
                for (std::size_t i = below(6); i > 0; --i) {
                    text += " ";
                    text += corner(vc, tc, nc);
                }
                break;
            case 4:
            case 5:
            case 6:
                text += "v";
                text += numbers(3);
                ++vc;
                break;
            case 7:
            case 8:
                text += "vt";
                text += numbers(2);
                ++tc;
                break;
            case 9:
                text += "vn";
                text += numbers(3);
                ++nc;
                break;
            case 10:
                text += one_of({"# comment", "g group", "o object", "", "F 1 2 3", "vp 1 2"});
                break;
            default:
                text += "f";
                for (std::size_t i = chance(90) ? 3 + below(3) : below(700); i > 0; --i) {
                    text += " ";
                    text += corner(vc, tc, nc);
                }
            }
            text += newline();
        }
        return text;
    }

    /// A model of few positions whose faces and lines meet again and again, in several groups.
    std::string crowded_object()
    {
        std::string text;
        for (const char* line : {"v", "v", "v", "vt", "vn"}) {
            text += line;
            text += " 1 0 0\n" + std::string(line) + " 0 1 0\n";
        }
        for (std::size_t n = 10 + below(40); n > 0; --n) {
            const std::string word =
                one_of({"f", "f", "f", "l", "l", "s", "g", "usemtl", "vn 0 1"});
            text += word;
            if (word == "s") {
                text += one_of({" 0", " 1", " 2", " off"});
            } else if (word == "f" || word == "l") {
                for (std::size_t i = 2 + below(3); i > 0; --i) {
                    text += " " + one_of({"1", "2", "3", "4", "-1", "7"});
                    text += one_of({"", "", "/1", "/2", "//1", "//2", "/1/1", "/1/2", "/-1/-1"});
                }
            }
            text += "\n";
        }
        return text;
    }

    /// Changes, cuts and repeats parts of a text.
    void mutate(std::string& text)
    {
        for (std::size_t n = 1 + below(8); n > 0 && !text.empty(); --n) {
            const std::size_t at = below(text.size());
            switch (below(4)) {
            case 0:
                text[at] = static_cast<char>(below(256));
                break;
            case 1:
                text.erase(at, below(20));
                break;
            case 2:
                text.insert(at, text.substr(below(text.size()), below(200)));
                break;
            default:
                text.insert(at, one_of({"\n", " ", "/", "-", "9", "f ", "\r", "e", "."}));
            }
        }
    }

    void expect_same(const std::string& file, const std::string& what)
    {
        const int fi = obj_add_file(file.c_str());
        ASSERT_EQ(describe(model_of(fi)), describe(reference::read(file))) << what;
        obj_del_file(fi);
    }

private:
    std::mt19937 random_{20};
};

TEST_F(ObjGeneratedTest, ModelsAreReadAsThePlainReaderReadsThem)
{
    for (int round = 0; round < 300; ++round) {
        write("one.mtl", library());
        write("two.mtl", library());
        const std::string text = object();
        expect_same(write("m.obj", text), text);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_F(ObjGeneratedTest, CornersAreSharedAsThePlainReaderSharesThem)
{
    for (int round = 0; round < 300; ++round) {
        const std::string text = crowded_object();
        expect_same(write("m.obj", text), text);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_F(ObjGeneratedTest, DamagedModelsAreReadAsThePlainReaderReadsThem)
{
    for (int round = 0; round < 300; ++round) {
        for (const char* name : {"one.mtl", "two.mtl"}) {
            std::string text = library();
            mutate(text);
            write(name, text);
        }
        std::string text = object();
        mutate(text);
        expect_same(write("m.obj", text), text);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_F(ObjGeneratedTest, RandomBytesAreReadAsThePlainReaderReadsThem)
{
    for (int round = 0; round < 60; ++round) {
        std::string text;
        for (std::size_t n = below(5000); n > 0; --n) {
            text += static_cast<char>(below(256));
        }
        expect_same(write("m.obj", text), "random bytes");
        if (HasFatalFailure()) {
            return;
        }
    }
}

} // namespace
