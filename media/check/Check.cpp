#include "Check.h"

#include "CheckFont.h"
#include "CheckPicture.h"
#include "CheckRecordings.h"
#include "CheckSound.h"

#include <algorithm>
#include <stdexcept>
#include <system_error>

namespace media {

std::vector<FileReport> checkFolder(const std::filesystem::path& folder)
{
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error)) {
        throw std::runtime_error("cannot check " + folder.string() + ": it is no folder");
    }
    VoiceCheck voice = checkVoice(folder);
    std::vector<FileReport> reports{std::move(voice.report), checkBubbles(folder)};
    for (FileReport& report : checkRecordings(folder, voice.seconds)) {
        reports.push_back(std::move(report));
    }
    reports.push_back(checkFont(folder));
    WaterCheck water = checkWater(folder);
    reports.push_back(std::move(water.report));
    reports.push_back(checkFish(folder, water.colors));
    reports.push_back(checkBubble(folder, water.colors));
    return reports;
}

bool playsWell(const std::vector<FileReport>& reports)
{
    return std::none_of(reports.begin(), reports.end(),
                        [](const FileReport& report) { return report.mark() >= Mark::wrong; });
}

} // namespace media
