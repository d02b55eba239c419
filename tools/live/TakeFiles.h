#pragma once

#include <filesystem>
#include <string>

namespace live {

/// Where takes are written: the first one to the file that the user has named, each further one to
/// a file beside it, dance-2.txt, dance-3.txt ... A file that is there already is passed over.
class TakeFiles {
public:
    /// Throws std::runtime_error when no file can be written there, or something is there already.
    /// \param first  replaced by the first take if \p force
    TakeFiles(std::filesystem::path first, bool force);

    /// \return the file's name. Throws std::runtime_error when it cannot be written, or there are
    ///         MOST files.
    std::filesystem::path write(const std::string& text);

    static constexpr int MOST = 99;

private:
    std::filesystem::path first;
    bool mayReplace;
};

} // namespace live
