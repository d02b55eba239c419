#pragma once

#include "Job.h"

#include <memory>
#include <string>
#include <vector>

class FrozenScene;
struct Painter;

namespace bench {

struct MatrixPairs;

inline void append(std::vector<Contender>& contenders, const std::vector<Contender>& more)
{
    contenders.insert(contenders.end(), more.begin(), more.end());
}

/// The contenders of other libraries, job by job. The sources in peers/ define these functions;
/// where their libraries are not installed NoPeers.cpp does, and there are none.
namespace peers {

std::vector<Contender> products(const std::shared_ptr<MatrixPairs>& pairs);
std::vector<Contender> inverses(const std::shared_ptr<MatrixPairs>& pairs);

/// Readers of the file \p path.
std::vector<Contender> jpegReaders(const std::string& path);
std::vector<Contender> pngReaders(const std::string& path);
std::vector<Contender> objReaders(const std::string& path);
std::vector<Contender> objReadersWithMaterials(const std::string& path);

/// Fonts made of the file \p path. Needs: current GL context.
std::vector<Contender> fonts(const std::string& path, unsigned height);

/// Traversals of a flat tree of so many nodes.
std::vector<Contender> updates(int nodes);
std::vector<Contender> draws(int nodes);
std::vector<Contender> events(int nodes);

/// Each makes a context of its own.
std::vector<Painter> painters(const FrozenScene& scene);

} // namespace peers
} // namespace bench
