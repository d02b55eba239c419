#pragma once

#include "FlashFields.h"
#include "Picture.h"

#include <string>
#include <vector>

namespace record {

/// Counts flashes as the Web Content Accessibility Guidelines do: WCAG 2.2, success criterion 2.3.1
/// "Three Flashes or Below Threshold", with its definitions of "general flash and red flash
/// thresholds" and "relative luminance".
///
/// - A general flash is a pair of opposing changes in relative luminance of a tenth of its maximum
/// or
///   more, where the darker image is below 0.80.
/// - A red flash is a pair of opposing transitions of which one state has R / (R + G + B) of 0.8 or
///   more, and whose states differ by more than 0.2 in the CIE 1976 UCS diagram (u', v').
/// - More than three in a second are too many, where together they cover more than a quarter of any
///   field of 10 degrees (FlashFields).
///
/// Frames are averaged in linear light over squares of pixels, so that at most 383 rows are left: a
/// pattern finer than that is no flash. A change that takes several frames counts at its steepest.
class FlashMeter {
public:
    static constexpr int MOST = 3; ///< flashes that are allowed in a second

    /// Of one kind of flash.
    struct Count {
        int most;       ///< in any second; FlashFields::COUNTED stands for all above
        double largest; ///< part of a field that changed at once, 0 to 1
    };

    struct Result {
        Count general;
        Count red;

        /// Whether the success criterion is met.
        bool isMet() const { return general.most <= MOST && red.most <= MOST; }

        /// The numbers as a table, and the verdict in its last line.
        std::string text() const;
    };

    /// \param width,height  of the frames, pixels
    /// \param fps           frames per second, at least 1
    FlashMeter(int width, int height, int fps);

    /// Takes the next frame, of that size.
    void add(const Picture& frame);

    /// What was found in all frames. None may follow.
    Result finish();

private:
    struct Color {
        float red, green, blue; ///< linear, 0 to 1
    };
    struct Chromaticity {
        float u, v;
        bool saturatedRed;
    };
    /// The steepest step of a change.
    struct Slope {
        float height = 0;
        int frame = 0;
    };
    /// The luminance of a cell.
    struct Brightness {
        int direction = 0;       ///< of the latest change: 1 = up, -1 = down, 0 = there was none
        float latest, low, high; ///< low, high: extremes since that change
        Slope rise, fall;
    };
    /// The color of a cell before and after its latest transition.
    struct Hue {
        Chromaticity before, after;
        bool changed = false; ///< before is set
    };
    /// The changes of the latest frames, which may move until they are counted.
    struct Changes {
        std::vector<std::vector<std::uint8_t>> latest;
        FlashFields fields;

        Changes(std::size_t cells, int delay, FlashFields where);
        std::uint8_t& at(int frame, std::size_t cell);
        void count(int frame);
    };

    int side;    ///< of a square that is averaged, pixels
    int columns; ///< cells
    int rows;    ///< cells
    int delay;   ///< frames until changes are counted
    int now = 0;
    std::vector<Color> cells;
    std::vector<Brightness> brightness;
    std::vector<Hue> hues;
    Changes general;
    Changes red;

    void average(const Picture& frame);
    void start(std::size_t cell, float luminance, const Chromaticity& color);
    void watch(std::size_t cell, float luminance);
    void watch(std::size_t cell, const Chromaticity& color);
    void steepen(std::size_t cell, FlashChange change, Slope& slope, float height, bool counts);
    static Chromaticity chromaticityOf(const Color& color);
};

} // namespace record
