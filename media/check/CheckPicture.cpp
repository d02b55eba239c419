#include "CheckPicture.h"

#include "CheckMessages.h"
#include "ImageJPEG.h"
#include "ImagePNG.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <fstream>

namespace media {

namespace {

/// The texture size that every OpenGL of the last fifteen years supports.
constexpr int LARGE = 8192;

/// Sprites are drawn at half opacity: alpha below FAINT cannot be seen then. A texel with an alpha
/// of SOLID or more is part of the figure.
constexpr int FAINT = 8;
constexpr int SOLID = 64;

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

/// The RGBA pixels of a sprite.
class Sprite {
public:
    explicit Sprite(ImagePNG& image) : image(image) {}

    int width() const { return image.w; }
    int height() const { return image.h; }

    /// \param y  from the top
    const unsigned char* at(int x, int y) const
    {
        const auto row = static_cast<std::size_t>(image.h - 1 - y);
        return image.buffer +
               (row * static_cast<std::size_t>(image.w) + static_cast<std::size_t>(x)) * 4;
    }

    int alpha(int x, int y) const { return at(x, y)[3]; }

    /// The luma of a pixel, 0 to 255.
    int brightness(int x, int y) const
    {
        const unsigned char* p = at(x, y);
        return (p[0] * 299 + p[1] * 587 + p[2] * 114) / 1000;
    }

private:
    ImagePNG& image;
};

/// The largest alpha among the texels that lie \p ring texels from the edge.
int alphaOfRing(const Sprite& sprite, int ring)
{
    int largest = 0;
    for (int y = ring; y < sprite.height() - ring; ++y) {
        for (int x = ring; x < sprite.width() - ring; ++x) {
            const bool onRing = x == ring || y == ring || x == sprite.width() - 1 - ring ||
                                y == sprite.height() - 1 - ring;
            if (onRing) {
                largest = std::max(largest, sprite.alpha(x, y));
            }
        }
    }
    return largest;
}

void checkBorder(const Sprite& sprite, FileReport& report)
{
    if (alphaOfRing(sprite, 0) >= FAINT) {
        report.wrong("the picture reaches its edge: it is cut off there, and a line of it shows at "
                     "the opposite edge; leave 2 transparent pixels all round");
    } else if (alphaOfRing(sprite, 1) >= FAINT) {
        report.hint("only 1 transparent pixel at the edge: the outline gets jagged as the sprite "
                    "turns; leave 2 all round");
    }
}

/// Linear filtering mixes the colors of a solid texel and its transparent neighbor, so the color of
/// the transparent one shows. Remarks on figures with a dark fringe.
void checkFringe(const Sprite& sprite, FileReport& report)
{
    constexpr int STEPS[][2] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}};
    int meetings = 0;
    int dark = 0;
    for (int y = 1; y < sprite.height() - 1; ++y) {
        for (int x = 1; x < sprite.width() - 1; ++x) {
            if (sprite.alpha(x, y) < SOLID) {
                continue;
            }
            for (const auto& step : STEPS) {
                const int nx = x + step[0];
                const int ny = y + step[1];
                if (sprite.alpha(nx, ny) >= FAINT) {
                    continue;
                }
                ++meetings;
                const int own = sprite.brightness(x, y);
                const int beside = sprite.brightness(nx, ny);
                dark += beside * 2 < own && own - beside > 40 ? 1 : 0;
            }
        }
    }
    if (dark * 10 > meetings) {
        report.wrong("transparent pixels beside the figure are dark, which gives it a dark fringe; "
                     "let them have the color of their neighbors");
    }
}

/// \return whether a texel can be seen
bool checkVisible(const Sprite& sprite, FileReport& report)
{
    for (int y = 0; y < sprite.height(); ++y) {
        for (int x = 0; x < sprite.width(); ++x) {
            if (sprite.alpha(x, y) >= FAINT) {
                return true;
            }
        }
    }
    report.wrong("is transparent all over: there is nothing to see");
    return false;
}

/// A fish seen from above is widest near its head, so most of its texels lie there.
void checkHeading(const Sprite& sprite, FileReport& report)
{
    std::int64_t mass = 0;
    std::int64_t moment = 0;
    for (int y = 0; y < sprite.height(); ++y) {
        for (int x = 0; x < sprite.width(); ++x) {
            mass += sprite.alpha(x, y);
            // Twice the distance from the middle downwards.
            moment += static_cast<std::int64_t>(sprite.alpha(x, y)) * (2 * y + 1 - sprite.height());
        }
    }
    // The center of mass lies more than 2 percent of the height below the middle.
    if (mass > 0 && moment * 25 > mass * sprite.height()) {
        report.hint("most of the fish lies in the lower half: if that is its head it swims "
                    "backwards; fish head towards the top of the picture");
    }
}

/// Reads a sprite and remarks on what fish and bubble have in common.
/// \return whether it could be read as RGBA and has something to see
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
    const Sprite sprite(image);
    if (!checkVisible(sprite, report)) {
        return false;
    }
    checkBorder(sprite, report);
    checkFringe(sprite, report);
    return true;
}

} // namespace

FileReport checkWater(const std::filesystem::path& folder)
{
    FileReport report{"data/underwater.jpg", "", {}};
    const std::string instead = "the water is plain gray";
    const std::filesystem::path path = folder / report.name;
    if (!checkReadable(path, Mark::wrong, instead, report)) {
        return report;
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
        return report;
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
    return report;
}

FileReport checkFish(const std::filesystem::path& folder)
{
    FileReport report{"data/fish0.png", "", {}};
    ImagePNG image;
    if (readSprite(folder / report.name, "every fish is a pale square", image, report)) {
        checkHeading(Sprite(image), report);
    }
    return report;
}

FileReport checkBubble(const std::filesystem::path& folder)
{
    FileReport report{"data/bubble.png", "", {}};
    ImagePNG image;
    readSprite(folder / report.name, "every bubble is a pale square", image, report);
    return report;
}

} // namespace media
