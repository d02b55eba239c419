#pragma once

#include "TileConfig.h"

#include <cstddef>
#include <cstdio>
#include <deque>
#include <string>
#include <vector>

/// The grammar of TileConfig.h, read from an open file; for TileConfig and TileDescription alone.

/// What a cluster points at. A deque does not move its elements when it grows: pointers to them
/// stay valid.
struct TileRecords {
    std::deque<ClusterNode> nodes;
    std::deque<WindowEntity> windows;
    std::deque<CameraEntity> cameras;
};

/// Reads one description.
class TileReader {
public:
    /// Reads as TileConfig does: a word that is not a number leaves its field.
    TileReader(std::FILE* file, TileRecords& records) : file_(file), records_(records) {}

    /// Refuses everything that makes no sense.
    /// \param problem   borrows; receives what is wrong, one line
    /// \param windowAt  borrows; receives for each window the position in the file after its Map
    TileReader(std::FILE* file, TileRecords& records, std::string& problem,
               std::vector<std::size_t>& windowAt)
        : file_(file), records_(records), problem_(&problem), windowAt_(&windowAt)
    {
    }

    /// Reads the word "Cluster". \return false when it is another one, or there is none
    bool readStart();

    /// Reads all that follows. \return false when a keyword is wrong or the file ends too early
    bool readCluster(Cluster& cluster);

private:
    std::FILE* file_;
    TileRecords& records_;
    std::string* problem_ = nullptr; ///< null = lenient
    std::vector<std::size_t>* windowAt_ = nullptr;

    bool isStrict() const { return problem_ != nullptr; }
    bool refuse(const std::string& what);
    bool readKeyword(const char* keyword);
    template<typename Number>
    bool readWholeWord(const char* keyword, Number& value);
    template<typename Number, std::size_t COUNT>
    bool readField(const char* keyword, Number (&values)[COUNT]);
    bool readCount(const char* keyword, int& count);
    bool readName(char (&name)[32]);
    bool readCamera(CameraEntity& camera);
    bool readWindow(WindowEntity& window);
    bool readNode(ClusterNode& node);
    bool readEnd(int nodes);
};
