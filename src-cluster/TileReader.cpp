#include "TileReader.h"

#include "MemoryWords.h"
#include "Printable.h"
#include "TextWords.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace {

std::string quoted(const char* word)
{
    return "\"" + Files::printable(word) + "\"";
}

bool scan(std::FILE* file, int& value)
{
    return std::fscanf(file, "%d", &value) == 1;
}

bool scan(std::FILE* file, float& value)
{
    return std::fscanf(file, "%f", &value) == 1;
}

} // namespace

/// \return false, for the caller to return
bool TileReader::refuse(const std::string& what)
{
    if (isStrict()) {
        *problem_ = what;
    }
    return false;
}

bool TileReader::readKeyword(const char* keyword)
{
    char word[32];
    if (!Files::readWord(file_, word)) {
        return refuse("the file ends where " + quoted(keyword) + " is expected");
    }
    if (std::strcmp(word, keyword) != 0) {
        return refuse(quoted(word) + " stands where " + quoted(keyword) + " is expected");
    }
    return true;
}

/// Reads a number that is a whole word.
template<typename Number>
bool TileReader::readWholeWord(const char* keyword, Number& value)
{
    const std::string wanted = std::is_integral_v<Number> ? "whole number" : "number";
    char word[64];
    if (!Files::readWord(file_, word)) {
        return refuse("the file ends where a " + wanted + " after " + keyword + " is expected");
    }
    // A word that fills the buffer may have been cut.
    if (std::strlen(word) == sizeof word - 1 || !Files::numberOf(word, value)) {
        return refuse(quoted(word) + " after " + keyword + " is no " + wanted +
                      ", or a too large one");
    }
    return true;
}

/// Reads a keyword and the numbers after it.
/// \return false when the keyword is wrong or the file ends too early, as in all functions below
template<typename Number, std::size_t COUNT>
bool TileReader::readField(const char* keyword, Number (&values)[COUNT])
{
    if (!readKeyword(keyword)) {
        return false;
    }
    for (Number& value : values) {
        if (isStrict()) {
            if (!readWholeWord(keyword, value)) {
                return false;
            }
        } else if (!scan(file_, value)) {
            return std::feof(file_) == 0;
        }
    }
    return true;
}

bool TileReader::readCount(const char* keyword, int& count)
{
    int value[1] = {};
    if (!readField(keyword, value)) {
        return false;
    }
    count = value[0];
    return count >= 0 || !isStrict() ||
           refuse(std::string(keyword) + " " + std::to_string(count) + " is no count");
}

bool TileReader::readName(char (&name)[32])
{
    char word[sizeof name + 1] = {};
    if (!Files::readWord(file_, word)) {
        return refuse("the file ends where a host name is expected");
    }
    if (isStrict() && std::strlen(word) == sizeof name) {
        return refuse("the host name that starts with " + quoted(word) +
                      " is longer than 31 characters");
    }
    std::copy_n(word, sizeof name - 1, name);
    return true;
}

bool TileReader::readCamera(CameraEntity& camera)
{
    return readField("Rectangle", camera.rectangle) && readField("Offset", camera.offset);
}

bool TileReader::readWindow(WindowEntity& window)
{
    if (!readField("Map", window.mapping)) {
        return false;
    }
    if (isStrict()) {
        windowAt_->push_back(static_cast<std::size_t>(std::max(std::ftell(file_), 0L)));
    }
    int cameras = 0;
    if (!readField("Location", window.location) || !readCount("Cameras", cameras)) {
        return false;
    }
    for (int i = 0; i < cameras; ++i) {
        CameraEntity& camera = records_.cameras.emplace_back();
        if (!readCamera(camera)) {
            return false;
        }
        window.cList.push_back(&camera);
    }
    return true;
}

bool TileReader::readNode(ClusterNode& node)
{
    int windows = 0;
    if (!readKeyword("Node") || !readKeyword("Hostname") || !readName(node.hostname) ||
        !readCount("Windows", windows)) {
        return false;
    }
    for (int i = 0; i < windows; ++i) {
        WindowEntity& window = records_.windows.emplace_back();
        if (!readWindow(window)) {
            return false;
        }
        node.wList.push_back(&window);
    }
    return true;
}

bool TileReader::readStart()
{
    return readKeyword("Cluster");
}

bool TileReader::readCluster(Cluster& cluster)
{
    int nodes = 0;
    if (!readField("TileMap", cluster.tilemap) || !readField("Mullions", cluster.mullions) ||
        !readCount("Nodes", nodes)) {
        return false;
    }
    for (int i = 0; i < nodes; ++i) {
        ClusterNode& node = records_.nodes.emplace_back();
        if (!readNode(node)) {
            return false;
        }
        cluster.nList.push_back(&node);
    }
    return !isStrict() || readEnd(nodes);
}

/// Refuses what follows the last host.
bool TileReader::readEnd(int nodes)
{
    char word[32];
    return !Files::readWord(file_, word) ||
           refuse(quoted(word) + " stands after the last of the " + std::to_string(nodes) +
                  " hosts that Nodes counts");
}
