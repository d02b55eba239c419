#include "Reverb.h"

#include <array>
#include <cmath>

namespace media {

void reverberate(Sound& sound, float decay, float wet)
{
    constexpr std::size_t LINES = 8;
    // Mutually prime lengths in samples, 35 to 97 ms, so that echoes do not coincide.
    constexpr std::array<std::size_t, LINES> LENGTHS = {1549, 1949, 2293, 2699,
                                                        3079, 3461, 3907, 4271};
    constexpr std::size_t PREDELAY = 1300;
    constexpr float DAMPING = 0.42f;

    std::array<std::vector<float>, LINES> lines;
    std::array<float, LINES> gains{};
    std::array<float, LINES> low{};
    std::array<std::size_t, LINES> at{};
    for (std::size_t i = 0; i < LINES; ++i) {
        lines[i].assign(LENGTHS[i], 0.0f);
        gains[i] = std::pow(10.0f, -3.0f * static_cast<float>(LENGTHS[i]) / (decay * SAMPLE_RATE));
    }
    std::vector<float> early(PREDELAY * 2, 0.0f);
    for (std::size_t n = 0; n < sound.size(); ++n) {
        float* delayed = &early[(n % PREDELAY) * 2];
        const float inLeft = delayed[0];
        const float inRight = delayed[1];
        delayed[0] = sound.left[n];
        delayed[1] = sound.right[n];

        std::array<float, LINES> out;
        float sum = 0;
        for (std::size_t i = 0; i < LINES; ++i) {
            low[i] += (1 - DAMPING) * (lines[i][at[i]] - low[i]);
            out[i] = low[i] * gains[i];
            sum += out[i];
        }
        for (std::size_t i = 0; i < LINES; ++i) {
            const float in = i % 2 == 0 ? inLeft : inRight;
            lines[i][at[i]] = out[i] - sum * (2.0f / LINES) + in;
            at[i] = at[i] + 1 == LENGTHS[i] ? 0 : at[i] + 1;
        }
        sound.left[n] += wet * (out[0] - out[2] + out[4] - out[6]);
        sound.right[n] += wet * (out[1] - out[3] + out[5] - out[7]);
    }
}

} // namespace media
