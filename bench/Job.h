#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// The frame of every benchmark program: jobs, each done by several contenders that are measured
/// side by side. docs/performance.md tells how to run them.
namespace bench {

/// One implementation of a job: the project's own code, a literal reference, the least that any
/// code could do ("lower bound"), or another library's.
struct Contender {
    std::string name;
    std::function<void()> run = {};   ///< one operation; the only part that is measured
    std::function<void()> reset = {}; ///< before each operation: restores its input

    /// Hashes the outcome of one operation on the reset input. All contenders of a job that have
    /// this must agree; the program ends with status 1 when they do not.
    std::function<std::uint64_t()> result = {};

    /// Custom measurement, used instead of run: performs one operation and returns its cost, in
    /// seconds or in the job's unit. Skipped by --count.
    std::function<double()> measure = {};
};

/// A job. Its contenders share the ownership of what they work on, so that the input lives as long
/// as the job.
struct Job {
    std::string name; ///< as in goals.py
    std::string item; ///< what is counted, for the tables: "tick", "node", "product"
    double items;     ///< how many of these one operation handles
    std::vector<Contender> contenders; ///< the first one is the project's own

    /// What all contenders' measure counts, as "bytes"; empty for time. A count is taken once: it
    /// is the same each time.
    std::string unit = {};
};

/// Makes a job when it is its turn. Cheap: what takes long is made by the contenders' first reset.
using JobMaker = std::function<Job()>;

/// What main of a benchmark program returns. For each job: checks that the contenders agree, then
///   - without options: times all contenders in turn, round after round, and prints a table;
///   - with --samples: prints a line for each contender instead, which judge.py reads: job, item,
///     unit ("ns" for time), contender, and the cost per item of each round, separated by tabs; and
///     with the unit "misses" those of the last cache, where the processor counts them;
///   - with --count, under callgrind: counts the instructions and misses of one operation of each
///     contender, which callgrind writes into one file each, with job, item, contender and items
///     per operation in it.
/// A further argument is the name of the only job to do.
int run(int argc, char** argv, const std::vector<JobMaker>& makers);

/// Hashes bits (FNV-1a). The result of the last call is the \p hash of the next one.
std::uint64_t hashOf(const void* data, std::size_t bytes, std::uint64_t hash = 0xcbf29ce484222325);

} // namespace bench
