#include "VoiceLength.h"

#include "OggFile.h"

namespace show {

std::optional<double> voiceLength(const std::filesystem::path& folder)
{
    const OggFile voice((folder / "sound/magpie_vocal.ogg").c_str());
    if (voice.state() != OggFile::State::open || voice.rate() <= 0) {
        return {};
    }
    return static_cast<double>(voice.samples()) / static_cast<double>(voice.rate());
}

} // namespace show
