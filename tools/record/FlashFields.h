#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace record {

/// A change of a cell of a picture, one half of a flash; both may stand in one byte.
enum FlashChange : std::uint8_t { FLASH_UP = 1, FLASH_DOWN = 2 };

/// Counts the flashes of every field of 10 degrees in a picture: of any 341 x 256 pixels when the
/// picture fills the height of a screen of 1024 x 768, as WCAG 2.2 takes it.
///
/// A field flashes when it changes one way and back, and it changes when more than a quarter of it
/// does at once: in one frame, or within a twelfth of a second less what changes the other way.
/// That is half of the time that a change takes at three flashes a second. So what moves is no
/// flash, however often its cells change: some get brighter where others get darker.
class FlashFields {
public:
    static constexpr double AREA = 0.25; ///< of a field, that may flash
    static constexpr int COUNTED = 4;    ///< more flashes in a second are not told apart

    /// \param columns,rows  of cells, at least 1
    /// \param fps           frames per second, at least 1
    FlashFields(int columns, int rows, int fps);

    /// Takes the changes of the next frame's cells, row by row: FlashChange, 0 = none.
    void add(const std::vector<std::uint8_t>& changes);

    /// The largest number of flashes of one field in any second, up to COUNTED.
    int most() const { return flashes; }

    /// The largest part of a field (0 to 1) that has changed one way at once.
    double largest() const { return share; }

private:
    using Sums = std::vector<int>; ///< of each field

    /// What goes on in all fields in one direction.
    struct Direction {
        std::uint8_t change;
        std::vector<Sums> latest;                     ///< cells that change, of the latest frames
        std::vector<std::array<int, COUNTED>> frames; ///< of each field's latest changes
    };

    int columns;
    int rows;
    int width; ///< cells of a field
    int height;
    int second; ///< frames
    int atOnce; ///< frames
    double cells;
    int now = 0;
    int flashes = 0;
    double share = 0;
    std::array<Direction, 2> directions;
    std::vector<int> integral; ///< of (columns + 1) x (rows + 1)

    void addUp(const std::vector<std::uint8_t>& changes, std::uint8_t change, Sums& sums);
    bool changesNow(Direction& direction, const Direction& opposite, std::size_t field);
    int inThisSecond(const Direction& direction, std::size_t field) const;
};

} // namespace record
