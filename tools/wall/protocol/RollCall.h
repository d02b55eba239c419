#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace wall {

class Protocol;

/// A wall that cannot start. Each line names a host and says what is missing there.
class StartError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Exchanges names and versions, which comes before everything else between the ranks, and tells
/// the protocol the names. Throws StartError, on all ranks, when they are not of one version.
/// \param version  of this program
/// \return the hosts of the ranks
std::vector<std::string> exchangeNames(Protocol& protocol, const std::string& version,
                                       const std::string& host);

/// What became of a step towards the first frame.
struct Readiness {
    std::uint64_t number = 0; ///< of what has to be the same on all ranks
    std::string problem;      ///< why this rank cannot go on; empty: it can
};

/// Exchanges whether all ranks can go on, with the same media. Throws StartError, on all ranks,
/// when not.
void exchangeReadiness(Protocol& protocol, const std::vector<std::string>& hosts,
                       const Readiness& own);

} // namespace wall
