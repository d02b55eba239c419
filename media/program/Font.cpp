#include "Font.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace media {

namespace {

std::string readFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    if (!file || !(content << file.rdbuf())) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return content.str();
}

} // namespace

std::vector<File> makeFont(const Request& request)
{
    // FreeType tells fonts by their content: an OpenType font may have the name that the scene
    // opens.
    std::vector<File> files{
        {"fonts/ChalkboardBold.ttf", readFile(request.font), request.font.filename().string()}};
    if (!request.fontLicense.empty()) {
        files.push_back({"fonts/ChalkboardBold.LICENSE.txt", readFile(request.fontLicense),
                         "the font's license"});
    }
    return files;
}

} // namespace media
