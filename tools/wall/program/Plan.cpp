#include "Plan.h"

#include "Protocol.h"
#include "RollCall.h"

#include <ctime>

namespace wall {

namespace {

/// Puts texts one behind the other, each after its length.
std::string pack(const std::vector<std::string>& texts)
{
    std::string bytes;
    for (const std::string& text : texts) {
        bytes += std::to_string(text.size()) + " " + text;
    }
    return bytes;
}

std::vector<std::string> unpack(const std::string& bytes)
{
    std::vector<std::string> texts;
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t space = bytes.find(' ', at);
        const std::size_t length = std::stoul(bytes.substr(at, space - at));
        texts.push_back(bytes.substr(space + 1, length));
        at = space + 1 + length;
    }
    return texts;
}

std::string problemOf(const std::optional<TileProblem>& problem)
{
    return problem ? problem->text() : "";
}

/// What rank 0 sends: a problem with the files, or empty; the files; the time of day.
std::string read(const Options& options)
{
    WallFiles files;
    const std::string problem = problemOf(readWallFiles(options.description, files));
    return pack({problem, files.name, files.description, files.hasMore ? "1" : "", files.more,
                 std::to_string(static_cast<unsigned>(std::time(nullptr)))});
}

} // namespace

Plan agreeOnPlan(Protocol& protocol, const Options& options, bool isFirst, std::size_t ranks)
{
    std::string bytes = isFirst ? read(options) : "";
    protocol.broadcast(bytes);
    const std::vector<std::string> texts = unpack(bytes);

    Plan plan;
    std::string problem = texts[0];
    plan.files.name = texts[1];
    plan.files.description = texts[2];
    plan.files.hasMore = !texts[3].empty();
    plan.files.more = texts[4];
    const auto now = static_cast<unsigned>(std::stoul(texts[5]));
    if (problem.empty()) {
        problem = problemOf(layOut(plan.files, plan.layout));
    }
    if (problem.empty() && plan.layout.tiles.size() != ranks) {
        problem = plan.files.name + " has " + std::to_string(plan.layout.tiles.size()) +
                  " windows, and there are " + std::to_string(ranks) + " ranks";
    }
    if (!problem.empty()) {
        throw StartError(problem);
    }
    plan.seed = options.seed.value_or(plan.layout.seed.value_or(now));
    plan.layout.fit = options.fit.value_or(plan.layout.fit);
    if (options.simulate) {
        plan.layout = plan.layout.simulated(options.scale);
    }
    return plan;
}

} // namespace wall
