#pragma once

#include "Picture.h"
#include "Time.h"

#include <array>
#include <string>

namespace record {

/// A contact sheet: the scene at five moments, side by side, the first at the left. They are the
/// middles of five equal parts of the voice.
class Sheet {
public:
    static constexpr int MOMENTS = 5;

    /// \param voice  its length
    explicit Sheet(Microseconds voice);

    /// The steps of the scene that are shown, in their order; those of a very short voice may be
    /// the same.
    const std::array<std::int64_t, MOMENTS>& steps() const { return shown; }

    bool shows(std::int64_t step) const;

    /// A black sheet.
    /// \param width,height  of one moment, pixels
    static Picture empty(int width, int height);

    /// Copies the picture of a step to its places on a sheet.
    void place(const Picture& moment, std::int64_t step, Picture& sheet) const;

    /// "the scene at 12.0, 36.0, 60.0, 84.0 and 108.0 s"
    std::string about() const;

private:
    std::array<Microseconds, MOMENTS> times{};
    std::array<std::int64_t, MOMENTS> shown{};
};

} // namespace record
