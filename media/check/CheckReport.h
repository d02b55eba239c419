#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace media {

/// What a remark on a file means for the scene, mildest first.
enum class Mark {
    ok,    ///< nothing to remark
    hint,  ///< the scene runs and looks right; worth knowing
    wrong, ///< the scene runs, and looks or sounds wrong
    stops  ///< the scene ends, at its start or later
};

/// What there is to say of one file of a media folder.
struct FileReport {
    struct Remark {
        Mark mark;
        std::string text; ///< what is found, and what the scene makes of it
    };

    std::string name;    ///< below the folder, "data/fish0.png"
    std::string summary; ///< what the file is, for one that is ok: "64 x 64"
    std::vector<Remark> remarks;

    void hint(const std::string& text) { remarks.push_back({Mark::hint, text}); }
    void wrong(const std::string& text) { remarks.push_back({Mark::wrong, text}); }
    void stops(const std::string& text) { remarks.push_back({Mark::stops, text}); }

    /// The gravest mark of the remarks; ok when there is none.
    Mark mark() const;
};

/// Says whether a file is there, and a regular file that can be opened; if not, remarks on it.
/// \param mark         of that remark
/// \param consequence  the end of its text: what the scene does without the file
bool checkReadable(const std::filesystem::path& path, Mark mark, const std::string& consequence,
                   FileReport& report);

/// The whole content of a file, as far as it can be read; empty for a folder.
std::string contentOf(const std::filesystem::path& path);

/// A number with a fixed count of digits after the point.
std::string decimal(double value, int digits);

/// The lines for the user: one for each remark, or for each file without one, beginning with its
/// mark; and a last line with the sums.
std::string describe(const std::vector<FileReport>& reports);

} // namespace media
