#include "CheckFont.h"

#include "FontFile.h"

#include <memory>
#include <stdexcept>

namespace media {

namespace {

/// What the scene asks of its font.
constexpr unsigned HEIGHT = 12; // points
constexpr unsigned CHARACTERS = 128;

/// \return the visible ASCII characters that the font lacks
std::string missingCharacters(const FontFile& font)
{
    std::string missing;
    for (unsigned c = '!'; c <= '~'; ++c) {
        if (!font.has(c)) {
            missing += static_cast<char>(c);
        }
    }
    return missing;
}

} // namespace

FileReport checkFont(const std::filesystem::path& folder)
{
    FileReport report{"fonts/ChalkboardBold.ttf", "", {}};
    const std::filesystem::path path = folder / report.name;
    const std::string consequence = "the scene ends as its window opens";
    if (!checkReadable(path, Mark::stops, consequence, report)) {
        return report;
    }
    std::unique_ptr<FontFile> font;
    try {
        font = std::make_unique<FontFile>(path.c_str(), HEIGHT);
    } catch (const std::runtime_error&) {
        report.stops("is no font that FreeType can open; " + consequence);
        return report;
    }
    report.summary = font->family().empty() ? "a font without a name" : font->family();
    for (unsigned c = 0; c < CHARACTERS; ++c) {
        try {
            font->glyph(c);
        } catch (const std::runtime_error& error) {
            report.stops("character " + std::to_string(c) + " cannot be drawn (" + error.what() +
                         "); " + consequence);
            return report;
        }
    }
    const std::string missing = missingCharacters(*font);
    if (!missing.empty()) {
        report.hint("has no glyph for " + missing);
    }
    return report;
}

} // namespace media
