#pragma once

#include "EncoderReport.h"
#include "PartFile.h"
#include "Picture.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <sys/types.h>
#include <thread>
#include <vector>

namespace record {

/// What a film is made of.
struct FilmFormat {
    std::filesystem::path path; ///< the extension tells the kind of film
    int width = 0;              ///< pixels, even
    int height = 0;
    int fps = 0;
    int soundRate = 0;                       ///< frames of two channels of 16 bits, per second
    std::vector<std::string> encoderOptions; ///< put before the output's name
};

/// The command that turns raw frames on its standard input and raw sound on its descriptor 3 into
/// a film, and reports its progress on its descriptor 4.
/// \param output  where the film goes
std::vector<std::string> encoderCommand(const FilmFormat& format,
                                        const std::filesystem::path& output);

/// A film in the making: ffmpeg, running as a process of its own and fed through pipes. The
/// messages of ffmpeg go to standard error. The film appears under its name when it is complete.
///
/// The process must ignore SIGPIPE.
class Encoder {
public:
    /// Hands out the next frames of sound, two channels interleaved; none at the end of the film.
    /// Called on a thread of its own.
    using SoundSource = std::function<std::vector<std::int16_t>()>;

    /// Starts ffmpeg. Throws std::runtime_error, with a line for the user, when the film cannot be
    /// written or there is no ffmpeg.
    Encoder(const FilmFormat& format, SoundSource sound);
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    /// Calls abandon.
    ~Encoder();

    /// Takes the next frame, of the film's size, and waits while ffmpeg is busy.
    /// \param waiting  called ten times a second meanwhile, and may throw; null: nothing is called
    /// \return false when ffmpeg has ended without an error, as with an option for the length
    /// Throws std::runtime_error when ffmpeg failed.
    bool write(const Picture& frame, const std::function<void()>& waiting = nullptr);

    /// The frames that ffmpeg's encoder has taken, as ffmpeg has last said, which it does twice a
    /// second; those that wait in a pipe or for a filter do not count. write and finish read it.
    std::int64_t taken() const { return report.taken(); }

    /// Waits for ffmpeg and gives the film its name. Throws std::runtime_error when ffmpeg failed.
    /// \param waiting  called ten times a second meanwhile, and may throw; null: nothing is called
    void finish(const std::function<void()>& waiting = nullptr);

    /// Ends ffmpeg and removes what there is of the film, unless it is finished.
    void abandon();

private:
    Files::PartFile part;
    pid_t process = -1; ///< -1 = ended
    int frames = -1;    ///< owns; the pipe's end to write to, -1 = closed
    int reports = -1;   ///< owns; the end to read from of another one, -1 = closed
    EncoderReport report;
    std::thread soundFeed;

    bool hand(const std::vector<std::uint8_t>& bytes, const std::function<void()>& waiting);
    void readReports();
    int waitForEnd(const std::function<void()>& waiting);
    void requireSuccess(int status);
};

} // namespace record
