#pragma once

#include "CheckReport.h"

namespace media {

/// What there is to say of the voice, and how long it is: the recordings are measured by that.
struct VoiceCheck {
    FileReport report;
    double seconds = 0; ///< 0 when the voice cannot be played
};

/// Checks sound/magpie_vocal.ogg of a media folder.
VoiceCheck checkVoice(const std::filesystem::path& folder);

/// Checks sound/bubbles_sound.ogg.
FileReport checkBubbles(const std::filesystem::path& folder);

} // namespace media
