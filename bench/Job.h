#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// The frame of every benchmark program: jobs, each done in several ways that are measured side by
/// side. docs/performance.md tells how to run them.
namespace bench {

/// One way of doing a job: the project's own code, a literal reference, the least that any code
/// could do, or another library's.
struct Way {
    std::string name;
    std::function<void()> run = {};   ///< one operation; the only part that is measured
    std::function<void()> reset = {}; ///< before each operation: what brings its input back

    /// A hash of what one operation on the reset input brings about. Ways of a job that have one
    /// must agree; the program ends with status 1 when they do not.
    std::function<std::uint64_t()> result = {};

    /// In place of run, for what is not the time of a call: does one operation and returns what it
    /// cost, in seconds of some clock; of another quantity, in thousand millionths (a goal names
    /// it, and tables then have the plain number). Not counted by --count.
    std::function<double()> measure = {};
};

/// A job. Its ways own what they work on (by shared pointers that their functions hold), so that
/// the input goes with the job.
struct Job {
    std::string name;      ///< what goals.py calls it
    std::string item;      ///< what is counted, for the tables: "tick", "node", "product"
    double items;          ///< how many of these one operation handles
    std::vector<Way> ways; ///< the first one is the project's own
};

/// Makes a job when it is its turn. Cheap: what takes long is made by the ways' first reset.
using JobMaker = std::function<Job()>;

/// What main of a benchmark program returns. For each job: checks that the ways agree, then
///   - without options: times all ways in turn, round after round, and prints a table;
///   - with --samples: prints a line for each way instead, which judge.py reads: job, item, way and
///     the nanoseconds per item of each round, separated by tabs;
///   - with --count, under callgrind: counts the instructions of one operation of each way, which
///     callgrind writes into one file each, with job, item, way and items per operation in it.
/// A further argument is the name of the only job to do.
int run(int argc, char** argv, const std::vector<JobMaker>& makers);

/// Hashes bits (FNV-1a). The result of the last call is the \p hash of the next one.
std::uint64_t hashOf(const void* data, std::size_t bytes, std::uint64_t hash = 0xcbf29ce484222325);

} // namespace bench
