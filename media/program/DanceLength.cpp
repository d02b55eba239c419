#include "DanceLength.h"

#include "CheckSound.h"
#include "PoseTable.h"

#include <sstream>
#include <stdexcept>

namespace media {

namespace {

/// The length of the voice of a folder as the scene takes it. 0 when there is none.
double lengthOfVoice(const std::filesystem::path& folder)
{
    const VoiceCheck voice = checkVoice(folder);
    std::error_code error;
    const std::filesystem::path path = folder / voice.report.name;
    if (voice.seconds == 0 && exists(std::filesystem::symlink_status(path, error))) {
        throw std::runtime_error("no length of a dance: " + path.string() + " " +
                                 voice.report.remarks.front().text + "; --seconds N tells one");
    }
    return voice.seconds;
}

/// \param what  that lasts so long
double checked(double seconds, const std::string& what)
{
    if (seconds < SHORTEST_DANCE || seconds > LONGEST_DANCE) {
        std::ostringstream text;
        text << what << " lasts " << seconds << " s, and a dance " << SHORTEST_DANCE << " to "
             << LONGEST_DANCE << " s";
        throw std::runtime_error(text.str());
    }
    return seconds;
}

} // namespace

double lengthFor(const Options& options)
{
    const Request& request = options.request;
    if (options.isLengthGiven || options.only != &danceAsset()) {
        return request.seconds;
    }
    const double seconds = lengthOfVoice(options.out);
    if (seconds > 0) {
        return checked(seconds, "the voice");
    }
    return request.table.empty()
               ? request.seconds
               : checked(endOf(readPoseTable(request.table)), request.table.string());
}

} // namespace media
