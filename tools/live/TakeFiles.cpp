#include "TakeFiles.h"

#include "PartFile.h"

#include <stdexcept>
#include <utility>

namespace live {

namespace fs = std::filesystem;

TakeFiles::TakeFiles(fs::path name, bool force) : first(std::move(name)), mayReplace(force)
{
    // --force replaces no pipe, no device and no folder.
    if (fs::exists(first) && !fs::is_regular_file(first)) {
        throw std::runtime_error("cannot write " + first.string() + ": not a file");
    }
    if (!force && fs::exists(first)) {
        throw std::runtime_error(first.string() + " is there already; --force replaces it");
    }
    const Files::PartFile probe(first);
}

fs::path TakeFiles::write(const std::string& text)
{
    for (int number = 1; number <= MOST; ++number) {
        fs::path name = first;
        if (number > 1) {
            name.replace_filename(first.stem().string() + "-" + std::to_string(number) +
                                  first.extension().string());
        }
        if (!std::exchange(mayReplace, false) && fs::exists(name)) {
            continue;
        }
        Files::writeWhole(name, text);
        return name;
    }
    throw std::runtime_error("there are " + std::to_string(MOST) + " recordings beside " +
                             first.string() + " already");
}

} // namespace live
