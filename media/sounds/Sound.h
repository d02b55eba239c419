#pragma once

#include <cstddef>
#include <vector>

namespace media {

constexpr int SAMPLE_RATE = 44100;

/// Two channels of samples, -1 .. 1, at SAMPLE_RATE. Both have the same length.
struct Sound {
    std::vector<float> left;
    std::vector<float> right;

    explicit Sound(std::size_t samples) : left(samples, 0.0f), right(samples, 0.0f) {}

    std::size_t size() const { return left.size(); }

    /// The largest absolute sample of both channels.
    float peak() const
    {
        float highest = 0;
        for (std::size_t i = 0; i < size(); ++i) {
            for (const float v : {left[i], right[i]}) {
                const float level = v < 0 ? -v : v;
                highest = level > highest ? level : highest;
            }
        }
        return highest;
    }

    /// Makes the largest absolute sample \p level. Silence stays silence.
    void normalize(float level)
    {
        const float now = peak();
        if (now > 0) {
            for (std::size_t i = 0; i < size(); ++i) {
                left[i] *= level / now;
                right[i] *= level / now;
            }
        }
    }
};

} // namespace media
