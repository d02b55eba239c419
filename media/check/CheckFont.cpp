#include "CheckFont.h"

#include <ft2build.h>
// The macro that names FreeType's header comes from ft2build.h.
#include FT_FREETYPE_H

#include <memory>
#include <stdexcept>

namespace media {

namespace {

struct Release {
    void operator()(FT_Library library) const { FT_Done_FreeType(library); }
    void operator()(FT_Face face) const { FT_Done_Face(face); }
};

} // namespace

FileReport checkFont(const std::filesystem::path& folder)
{
    constexpr FT_F26Dot6 HEIGHT = 12 * 64;
    constexpr FT_ULong CHARACTERS = 128;

    FileReport report{"fonts/ChalkboardBold.ttf", "", {}};
    const std::filesystem::path path = folder / report.name;
    const std::string consequence = "the scene ends as its window opens";
    if (!checkReadable(path, Mark::stops, consequence, report)) {
        return report;
    }
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0) {
        throw std::runtime_error("FreeType does not start");
    }
    const std::unique_ptr<FT_LibraryRec_, Release> libraryOwner(library);
    FT_Face face = nullptr;
    if (FT_New_Face(library, path.c_str(), 0, &face) != 0) {
        report.stops("is no font that FreeType can open; " + consequence);
        return report;
    }
    const std::unique_ptr<FT_FaceRec_, Release> faceOwner(face);
    report.summary = face->family_name != nullptr ? face->family_name : "a font without a name";

    FT_Set_Char_Size(face, HEIGHT, HEIGHT, 96, 96);
    std::string missing;
    for (FT_ULong c = 0; c < CHARACTERS; ++c) {
        if (FT_Load_Char(face, c, FT_LOAD_RENDER) != 0) {
            report.stops("character " + std::to_string(c) + " cannot be drawn; " + consequence);
            return report;
        }
        if (c > ' ' && c < 127 && FT_Get_Char_Index(face, c) == 0) {
            missing += static_cast<char>(c);
        }
    }
    if (!missing.empty()) {
        report.hint("has no glyph for " + missing);
    }
    return report;
}

} // namespace media
