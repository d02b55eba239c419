#include "Voice.h"

#include "Encode.h"

#include <cmath>
#include <numbers>

namespace media {

std::vector<File> makeVoice(const Request& request)
{
    Sound sound(static_cast<std::size_t>(request.seconds) * SAMPLE_RATE);
    for (std::size_t i = 0; i < sound.size(); ++i) {
        const double t = static_cast<double>(i) / SAMPLE_RATE;
        const double beat = std::fmod(t, 3.375);
        const double level =
            std::min({1.0, beat * 4, (2.4 - beat) * 2, t / 6, request.seconds - 3 - t});
        if (level > 0) {
            const double v = level * std::sin(2 * std::numbers::pi * 220 * t);
            sound.left[i] = sound.right[i] = static_cast<float>(v);
        }
    }
    sound.normalise(0.562341f);
    return {{"sound/magpie_vocal.ogg", encodeVorbis(sound, 0.5f, 1),
             std::to_string(request.seconds) + " s"}};
}

} // namespace media
