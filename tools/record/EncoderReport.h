#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace record {

/// What ffmpeg's option -progress says: blocks of lines "name=value", each of which ends with the
/// line "progress=continue" or "progress=end".
class EncoderReport {
public:
    /// Takes the next bytes of the text, in pieces of any size. What makes no sense is left out.
    void read(std::string_view bytes);

    /// Frames that the encoder has taken, as of the last whole block. Those that ffmpeg drops for a
    /// lower rate count, those that it repeats for a higher one do not.
    std::int64_t taken() const { return frames; }

private:
    std::int64_t frames = 0;
    std::int64_t encoded = 0; ///< of the block that is being read, like those below
    std::int64_t dropped = 0;
    std::int64_t repeated = 0;
    std::string line; ///< the part of it that has been read

    void readLine();
};

} // namespace record
