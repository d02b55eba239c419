#include "Bubbles.h"

#include "Encode.h"
#include "Random.h"

#include <cmath>
#include <numbers>

namespace media {

std::vector<File> makeBubbles(const Request& request)
{
    Sound sound(std::size_t{18} * SAMPLE_RATE);
    Random random(request.seed, 2);
    for (int n = 0; n < 90; ++n) {
        const auto start = static_cast<std::size_t>(random.below(static_cast<int>(sound.size())));
        const double pitch = random.between(350, 1800);
        const float pan = random.unit();
        const float level = random.between(0.2f, 1);
        double phase = 0;
        for (std::size_t k = 0; k < 8000; ++k) {
            const double t = static_cast<double>(k) / SAMPLE_RATE;
            phase += pitch * (1 + 3 * t) / SAMPLE_RATE;
            const double v = level * std::min(1.0, t * 200) * std::exp(-t * 40) *
                             std::sin(2 * std::numbers::pi * phase);
            const std::size_t at = (start + k) % sound.size();
            sound.left[at] += static_cast<float>(v) * (1 - pan);
            sound.right[at] += static_cast<float>(v) * pan;
        }
    }
    sound.normalise(0.707946f);
    return {{"sound/bubbles_sound.ogg", encodeVorbis(sound, 0.5f, 2), "18 s"}};
}

} // namespace media
