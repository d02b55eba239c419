#pragma once

#include "Place.h"
#include "Vector.h"

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

class MoCap;

/// The scene's figures.
inline constexpr std::size_t FIGURES = 3;

/// Where the figures are in an update; none: where the recording has them.
using Poses = std::array<std::optional<Place>, FIGURES>;

/// A recording in which figures can be led elsewhere. A sensor shrinks the record that it meets, in
/// the recording: here each update meets a record that is as it was read, or made for it.
class SteeredRecording {
public:
    /// Copies the series of the figures. Throws std::runtime_error for a recording without a record
    /// for each of them.
    /// \param recording  borrows: as it was read, not played yet
    explicit SteeredRecording(MoCap& recording);

    /// Prepares the recording for the update that meets this step.
    /// \param step  0 .. steps() - 1
    void write(int step, const Poses& poses);

    /// Where the recording has a figure: as the sensor computes it.
    Vec3 placeAt(int figure, int step) const;

    /// How many steps all figures have.
    int steps() const { return count; }

    /// The nearest step that all figures have: the clock can be one beyond the last.
    int nearestStep(int step) const;

    /// A figure's records as they were read, at least steps() of them.
    const std::vector<Vec3>& recordsOf(std::size_t figure) const { return untouched[figure]; }

private:
    MoCap& played;
    std::array<std::vector<Vec3>, FIGURES> untouched;
    int count = 0;
};
