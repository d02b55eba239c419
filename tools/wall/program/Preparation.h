#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace wall {

class MpiTransport;
class Protocol;
struct Options;
struct Rank;

/// A rank's way to its first frame, in steps that all ranks take together. When one of them cannot
/// take a step, all end.
///
/// The steps throw StartError, on all ranks, with a line for each host that cannot go on, and
/// WallError when a rank does not answer.
class Preparation {
public:
    /// All are borrowed. \p protocol speaks through \p transport.
    Preparation(Rank& own, const Options& given, MpiTransport& transport, Protocol& protocol);

    /// The roll call: exchanges names and versions, and gets the same plan on all ranks.
    void meet();

    /// Makes the media's folder the working directory, opens the tile's window, whose GL context is
    /// then current, and compares the media.
    void enter();

    /// Makes the scene or the pattern, as it is before the first frame, and opens the sound of
    /// rank 0. Standard output is held from then on. The scene's readers end the process when they
    /// cannot use a medium: all ranks then end with it, with a line as above and status 1.
    void make();

    /// A further step.
    /// \param work  throws std::exception when this rank cannot go on; returns a number that has to
    ///              be the same on all ranks
    void step(const std::function<std::uint64_t()>& work);

private:
    Rank& rank;
    const Options& options;
    MpiTransport& net;
    Protocol& talk;

    void openWindow();
    void makeScene();
    void endAll(const std::string& why);
};

} // namespace wall
