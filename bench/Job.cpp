#include "Job.h"

#include "Child.h"
#include "HardwareCounter.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstring>
#include <linux/perf_event.h>
#include <map>
#include <optional>
#include <valgrind/callgrind.h>

namespace bench {
namespace {

constexpr int ROUNDS = 15;
constexpr int LEAST_ROUNDS = 5;
constexpr double SECONDS = 0.02;      // at least, of one contender in one round
constexpr double SECONDS_OF_JOB = 10; // after that no round begins, but for the least

/// Of each contender the cost per item in nanoseconds, or in the job's unit; one number a round.
using Samples = std::map<std::string, std::vector<double>>;

/// Takes Google Benchmark's results instead of printing them.
class Collector : public benchmark::BenchmarkReporter {
public:
    Collector(Samples& all, double itemsPerOperation) : samples(all), items(itemsPerOperation) {}

    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            const double seconds = run.real_accumulated_time / static_cast<double>(run.iterations);
            samples[run.run_name.function_name].push_back(seconds * 1e9 / items);
        }
    }

private:
    Samples& samples;
    double items;
};

void measure(benchmark::State& state, const Contender& contender)
{
    for (auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores): only counts
        if (contender.measure) {
            if (contender.reset) {
                contender.reset();
            }
            state.SetIterationTime(contender.measure());
            continue;
        }
        if (contender.reset) {
            state.PauseTiming();
            contender.reset();
            state.ResumeTiming();
        }
        contender.run();
    }
}

/// All contenders in turn, round after round: what disturbs the machine for a while disturbs all of
/// them.
Samples timed(const Job& job)
{
    benchmark::ClearRegisteredBenchmarks();
    for (const Contender& contender : job.contenders) {
        auto* registered = benchmark::RegisterBenchmark(
            contender.name.c_str(),
            [&contender](benchmark::State& state) { measure(state, contender); });
        if (contender.measure) {
            registered->UseManualTime()->Iterations(1);
        } else {
            registered->MinTime(SECONDS);
        }
    }
    Samples samples;
    Collector collector(samples, job.items);
    const double start = wallClock();
    for (int round = 0; round < ROUNDS; ++round) {
        if (round >= LEAST_ROUNDS && wallClock() - start > SECONDS_OF_JOB) {
            break;
        }
        benchmark::RunSpecifiedBenchmarks(&collector, ".");
    }
    return samples;
}

/// Counts instead of times.
Samples quantities(const Job& job)
{
    Samples samples;
    for (const Contender& contender : job.contenders) {
        samples[contender.name] = {contender.measure() / job.items};
    }
    return samples;
}

/// Lets the processor count the misses of its last cache in one more operation of each contender.
/// \return nothing where it does not
Samples missesOf(const Job& job)
{
    HardwareCounter counter(PERF_TYPE_HARDWARE, PERF_COUNT_HW_CACHE_MISSES);
    Samples samples;
    for (const Contender& contender : job.contenders) {
        if (!contender.run) {
            continue;
        }
        if (contender.reset) {
            contender.reset();
        }
        counter.start();
        contender.run();
        if (const std::optional<std::uint64_t> misses = counter.stop()) {
            samples[contender.name] = {static_cast<double>(*misses) / job.items};
        }
    }
    return samples;
}

/// Writes one profile for each contender, with its name in it.
void count(const Job& job)
{
    for (const Contender& contender : job.contenders) {
        if (!contender.run) {
            continue;
        }
        const auto reset = contender.reset ? contender.reset : [] {};
        // Once uncounted: makes what is made lazily.
        reset();
        contender.run();
        reset();
        CALLGRIND_START_INSTRUMENTATION;
        contender.run();
        CALLGRIND_STOP_INSTRUMENTATION;
        const std::string name =
            job.name + '\t' + job.item + '\t' + contender.name + '\t' + std::to_string(job.items);
        CALLGRIND_DUMP_STATS_AT(name.c_str());
    }
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

const char* unitOf(const Job& job)
{
    return job.unit.empty() ? "ns" : job.unit.c_str();
}

void printTable(const Job& job, const Samples& samples)
{
    const std::vector<double>& own = samples.at(job.contenders.front().name);
    std::printf("\n%s\n", job.name.c_str());
    for (const Contender& contender : job.contenders) {
        const std::vector<double>& times = samples.at(contender.name);
        std::vector<double> ratios(own.size());
        std::transform(own.begin(), own.end(), times.begin(), ratios.begin(), std::divides<>());
        std::printf("  %-14s %14.1f %s per %-10s %-8s / it: %.3f\n", contender.name.c_str(),
                    median(times), unitOf(job), job.item.c_str(),
                    job.contenders.front().name.c_str(), median(ratios));
    }
}

void printSamples(const Job& job, const Samples& samples, const char* unit)
{
    for (const Contender& contender : job.contenders) {
        const auto found = samples.find(contender.name);
        if (found == samples.end()) {
            continue;
        }
        std::printf("%s\t%s\t%s\t%s", job.name.c_str(), job.item.c_str(), unit,
                    contender.name.c_str());
        for (const double number : found->second) {
            std::printf("\t%.3f", number);
        }
        std::printf("\n");
    }
}

bool agree(const Job& job)
{
    const Contender* first = nullptr;
    std::uint64_t expected = 0;
    for (const Contender& contender : job.contenders) {
        if (!contender.result) {
            continue;
        }
        const std::uint64_t result = contender.result();
        if (first == nullptr) {
            first = &contender;
            expected = result;
        } else if (result != expected) {
            std::printf("%s: %s and %s do not agree\n", job.name.c_str(), first->name.c_str(),
                        contender.name.c_str());
            return false;
        }
    }
    return true;
}

} // namespace

int run(int argc, char** argv, const std::vector<JobMaker>& makers)
{
    bool samplesOnly = false;
    bool counting = false;
    std::string only;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--samples") == 0) {
            samplesOnly = true;
        } else if (std::strcmp(argv[i], "--count") == 0) {
            counting = true;
        } else {
            only = argv[i];
        }
    }

    for (const JobMaker& make : makers) {
        const Job job = make();
        if (!only.empty() && only != job.name) {
            continue;
        }
        if (!agree(job)) {
            return 1;
        }
        if (counting) {
            count(job);
            continue;
        }
        const Samples samples = job.unit.empty() ? timed(job) : quantities(job);
        if (samplesOnly) {
            printSamples(job, samples, unitOf(job));
            printSamples(job, missesOf(job), "misses");
        } else {
            printTable(job, samples);
        }
        std::fflush(stdout);
    }
    return 0;
}

std::uint64_t hashOf(const void* data, std::size_t bytes, std::uint64_t hash)
{
    const auto* byte = static_cast<const unsigned char*>(data);
    for (std::size_t i = 0; i < bytes; ++i) {
        hash = (hash ^ byte[i]) * 0x100000001b3;
    }
    return hash;
}

} // namespace bench
