#include "CheckReport.h"

#include "Printable.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <system_error>

namespace media {

namespace {

constexpr std::array NAMES = {"ok", "hint", "wrong", "stops"};

/// A remark as one line. Names and texts come from files, so control characters are escaped.
std::string line(Mark mark, const std::string& name, const std::string& text)
{
    std::string result = NAMES[static_cast<std::size_t>(mark)];
    result.resize(7, ' ');
    return result + Files::printable(name + ": " + text) + '\n';
}

} // namespace

Mark FileReport::mark() const
{
    Mark gravest = Mark::ok;
    for (const Remark& remark : remarks) {
        gravest = std::max(gravest, remark.mark);
    }
    return gravest;
}

bool checkReadable(const std::filesystem::path& path, Mark mark, const std::string& consequence,
                   FileReport& report)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    std::string problem;
    if (!exists(status)) {
        problem = status_known(status) ? "is missing" : "cannot be read: " + error.message();
    } else if (is_directory(status)) {
        problem = "is a folder";
    } else if (!is_regular_file(status)) {
        problem = "is no regular file";
    } else if (std::unique_ptr<std::FILE, int (*)(std::FILE*)>(std::fopen(path.c_str(), "rb"),
                                                               std::fclose) == nullptr) {
        problem = std::string("cannot be read: ") + std::strerror(errno);
    }
    if (problem.empty()) {
        return true;
    }
    report.remarks.push_back({mark, problem + "; " + consequence});
    return false;
}

std::string contentOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string decimal(double value, int digits)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    return text;
}

std::string describe(const std::vector<FileReport>& reports)
{
    std::string text;
    std::array<std::size_t, NAMES.size()> sums{};
    for (const FileReport& report : reports) {
        ++sums[static_cast<std::size_t>(report.mark())];
        if (report.remarks.empty()) {
            text += line(Mark::ok, report.name, report.summary);
        }
        for (const FileReport::Remark& remark : report.remarks) {
            text += line(remark.mark, report.name, remark.text);
        }
    }
    text += std::to_string(reports.size()) + (reports.size() == 1 ? " file: " : " files: ") +
            std::to_string(sums[0]) + " ok, " + std::to_string(sums[1]) + " with hints, " +
            std::to_string(sums[2]) + " wrong, " + std::to_string(sums[3]) +
            " that stop the scene\n";
    return text;
}

} // namespace media
