#include "RollCall.h"

#include "Protocol.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace wall {

namespace {

/// This record never changes: ranks of other versions must be able to read it.
struct Name {
    char magic[16] = "kelpix-wall";
    char version[48] = {};
    char host[64] = {};
};
static_assert(sizeof(Name) == 128);

struct ReadyRecord {
    std::uint64_t number = 0;
    char problem[504] = {};
};

template<std::size_t SIZE>
void copy(const std::string& text, char (&target)[SIZE])
{
    target[text.copy(target, SIZE - 1)] = '\0';
}

template<std::size_t SIZE>
std::string textOf(const char (&source)[SIZE])
{
    return {source, std::find(source, source + SIZE, '\0')};
}

template<typename Record>
std::vector<Record> gather(Protocol& protocol, const Record& own)
{
    static_assert(std::is_trivially_copyable_v<Record>);
    const std::vector<std::byte> bytes = protocol.gather(&own, sizeof own);
    std::vector<Record> records(bytes.size() / sizeof own);
    std::memcpy(records.data(), bytes.data(), bytes.size());
    return records;
}

void throwIfAny(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines) {
        text += text.empty() ? "" : "\n";
        text += line;
    }
    if (!text.empty()) {
        throw StartError(text);
    }
}

} // namespace

std::vector<std::string> exchangeNames(Protocol& protocol, const std::string& version,
                                       const std::string& host)
{
    Name own;
    copy(version, own.version);
    copy(host, own.host);
    std::vector<std::string> hosts;
    std::vector<std::string> problems;
    const std::vector<Name> names = gather(protocol, own);
    const std::string wanted = textOf(names.front().version);
    for (const Name& name : names) {
        hosts.push_back(textOf(name.host));
        const std::string theirs = textOf(name.version);
        if (textOf(name.magic) != textOf(own.magic) || theirs != wanted) {
            std::string& line = problems.emplace_back(hosts.back());
            line.append(": kelpix-wall is of version ").append(theirs);
            line.append(", on ").append(hosts.front()).append(" of version ").append(wanted);
        }
    }
    throwIfAny(problems);
    protocol.setNames(hosts);
    return hosts;
}

void exchangeReadiness(Protocol& protocol, const std::vector<std::string>& hosts,
                       const Readiness& own)
{
    ReadyRecord record;
    record.number = own.number;
    copy(own.problem, record.problem);
    std::vector<std::string> problems;
    const std::vector<ReadyRecord> records = gather(protocol, record);
    for (std::size_t rank = 0; rank < records.size(); ++rank) {
        const std::string problem = textOf(records[rank].problem);
        if (!problem.empty()) {
            problems.push_back(hosts[rank] + ": " + problem);
        }
    }
    for (std::size_t rank = 0; rank < records.size() && problems.empty(); ++rank) {
        if (records[rank].number != records[0].number) {
            problems.push_back(hosts[rank] + ": the media are not those of " + hosts[0]);
        }
    }
    // Windows of one host miss the same things.
    problems.erase(std::unique(problems.begin(), problems.end()), problems.end());
    throwIfAny(problems);
}

} // namespace wall
