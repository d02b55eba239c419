#include "CheckPicture.h"

#include "CheckContrast.h"
#include "CheckMessages.h"
#include "CheckSprite.h"
#include "ImageJPEG.h"
#include "ImagePNG.h"
#include "VisibleWorld.h"

#include <algorithm>
#include <bit>
#include <fstream>

namespace media {

namespace {

/// The texture size that every OpenGL of the last fifteen years supports.
constexpr int LARGE = 8192;

/// Bit depth and color type, from the header of a PNG file.
struct PngHeader {
    int bits = 0;
    int colorType = -1;

    explicit PngHeader(const std::filesystem::path& path)
    {
        constexpr std::size_t BITS_AT = 24;
        char bytes[BITS_AT + 2];
        if (std::ifstream(path, std::ios::binary).read(bytes, sizeof bytes)) {
            bits = static_cast<unsigned char>(bytes[BITS_AT]);
            colorType = static_cast<unsigned char>(bytes[BITS_AT + 1]);
        }
    }
};

std::string inBrackets(const std::string& messages)
{
    return messages.empty() ? "" : " (" + messages + ")";
}

std::string sizeOf(BasicImage& image)
{
    return std::to_string(image.getWidth()) + " x " + std::to_string(image.getHeight());
}

bool isPowerOfTwo(int size)
{
    return std::has_single_bit(static_cast<unsigned>(size));
}

void checkSize(BasicImage& image, FileReport& report)
{
    const int width = image.getWidth();
    const int height = image.getHeight();
    const std::string is = "is " + sizeOf(image) + ": ";
    if (width != height) {
        report.hint(is + "not square, so the scene stretches it to a square");
    }
    if (!isPowerOfTwo(width) || !isPowerOfTwo(height)) {
        report.hint(is + "sizes that are no powers of two are beyond old graphics cards");
    }
    if (width % 4 != 0) {
        report.hint(is + "a width that is no multiple of 4 makes the upload slow");
    }
    if (width > LARGE || height > LARGE) {
        report.hint(is + "too large for some graphics cards, and far more than can be seen");
    }
}

/// Reads a sprite and remarks on its file.
/// \return whether it could be read as RGBA
bool readSprite(const std::filesystem::path& path, const std::string& instead, ImagePNG& image,
                FileReport& report)
{
    if (!checkReadable(path, Mark::wrong, instead, report)) {
        return false;
    }
    const PngHeader header(path);
    CheckMessages messages;
    const bool read = image.read(path.c_str()) == 1;
    const std::string said = messages.take();
    // The image does not delete its name.
    delete[] image.sourceFile;
    image.sourceFile = nullptr;
    if (!read) {
        constexpr int PALETTE = 3;
        constexpr int GRAY_ALPHA = 4;
        const bool understood = said.starts_with("Unsupported color type");
        report.wrong((understood && header.colorType == PALETTE      ? "has a palette"
                      : understood && header.colorType == GRAY_ALPHA ? "is gray with alpha"
                                                                     : "cannot be decoded") +
                     inBrackets(said) + ", save it as RGBA with 8 bits a channel; " + instead);
        return false;
    }
    if (!said.empty()) {
        report.hint("the reader complains" + inBrackets(said));
    }
    if (image.c != 4) {
        report.wrong(std::string(image.c == 1 ? "is gray" : "has no alpha channel") +
                     ": the scene takes it for RGBA and shows garbled pixels");
        return false;
    }
    if (header.bits == 16) {
        report.hint("has 16 bits a channel: the lower 8 are dropped");
    }
    report.summary = sizeOf(image) + ", RGBA";
    checkSize(image, report);
    return true;
}

/// The colors of the water, part by part; none for an image that the scene shows garbled.
std::vector<WaterColor> colorsOf(const ImageJPEG& image)
{
    constexpr int PARTS = 8; // in a row, and as many rows
    constexpr float SHOWN = 0.5f;
    if (image.c != 3 || image.w < PARTS || image.h < PARTS) {
        return {};
    }
    std::vector<WaterColor> colors(std::size_t{PARTS} * PARTS, WaterColor{});
    std::vector<float> counts(colors.size(), 0);
    const unsigned char* texel = image.buffer;
    for (int y = 0; y < image.h; ++y) {
        for (int x = 0; x < image.w; ++x, texel += 3) {
            const auto row =
                static_cast<std::size_t>(y) * PARTS / static_cast<std::size_t>(image.h);
            const auto part = row * PARTS + static_cast<std::size_t>(x) * PARTS /
                                                static_cast<std::size_t>(image.w);
            ++counts[part];
            for (std::size_t c = 0; c < 3; ++c) {
                colors[part][c] +=
                    (SHOWN * static_cast<float>(texel[c]) - colors[part][c]) / counts[part];
            }
        }
    }
    return colors;
}

/// The mean brightness of what a window shows of the water, as the scene shows it: the luma of Rec.
/// 709, 0 .. 255.
double brightnessOf(const ImageJPEG& image, const Region& view)
{
    const auto pixel = [](float share, int size) {
        return static_cast<int>(share * static_cast<float>(size));
    };
    double sum = 0;
    int count = 0;
    for (int y = pixel(view.bottom, image.h); y < pixel(view.top, image.h); ++y) {
        for (int x = pixel(view.left, image.w); x < pixel(view.right, image.w); ++x) {
            const auto at = static_cast<std::size_t>(y) * static_cast<std::size_t>(image.w) +
                            static_cast<std::size_t>(x);
            const unsigned char* texel = image.buffer + at * 3;
            sum += 0.2126 * texel[0] + 0.7152 * texel[1] + 0.0722 * texel[2];
            ++count;
        }
    }
    return count > 0 ? sum / count / 2 : 255;
}

void checkBrightness(const ImageJPEG& image, FileReport& report)
{
    constexpr double BRIGHT = 70;
    if (image.c != 3) {
        return;
    }
    // A picture may be made for the one view or for the other.
    const double mean = std::max(brightnessOf(image, SQUARE_VIEW), brightnessOf(image, WIDE_VIEW));
    if (mean < BRIGHT) {
        report.hint("is dark: the scene halves it, to a mean brightness of " + decimal(mean, 0) +
                    " of 255; paint it lighter");
    }
}

} // namespace

WaterCheck checkWater(const std::filesystem::path& folder)
{
    WaterCheck water{{"data/underwater.jpg", "", {}}, {}};
    FileReport& report = water.report;
    const std::string instead = "the water is plain gray";
    const std::filesystem::path path = folder / report.name;
    if (!checkReadable(path, Mark::wrong, instead, report)) {
        return water;
    }
    ImageJPEG image;
    CheckMessages messages;
    const bool read = image.read(path.c_str()) == 1;
    const std::string said = messages.take();
    delete[] image.sourceFile;
    image.sourceFile = nullptr;
    if (!read) {
        report.wrong("cannot be decoded" + inBrackets(said) + "; " +
                     (image.buffer == nullptr ? instead : "what is missing is black"));
        return water;
    }
    report.summary = sizeOf(image) + ", RGB";
    if (!said.empty()) {
        report.wrong("is damaged" + inBrackets(said) + "; part of the picture is lost");
    }
    if (image.c != 3) {
        report.wrong(std::string(image.c == 1 ? "is gray" : "is CMYK") +
                     ": the scene takes it for RGB and shows garbled pixels");
    }
    checkSize(image, report);
    checkBrightness(image, report);
    water.colors = colorsOf(image);
    return water;
}

FileReport checkFish(const std::filesystem::path& folder, const std::vector<WaterColor>& water)
{
    FileReport report{"data/fish0.png", "", {}};
    ImagePNG image;
    if (readSprite(folder / report.name, "every fish is a pale square", image, report)) {
        const Sprite sprite(image);
        checkSprite(sprite, water, report);
        if (report.remarks.empty()) {
            checkContrast(sprite, water, report);
        }
        checkHeading(sprite, report);
    }
    return report;
}

FileReport checkBubble(const std::filesystem::path& folder, const std::vector<WaterColor>& water)
{
    FileReport report{"data/bubble.png", "", {}};
    ImagePNG image;
    if (readSprite(folder / report.name, "every bubble is a pale square", image, report)) {
        checkSprite(Sprite(image), water, report);
    }
    return report;
}

} // namespace media
