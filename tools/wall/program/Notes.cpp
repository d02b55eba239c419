#include "Notes.h"

#include "LedFigures.h"
#include "Options.h"
#include "Protocol.h"
#include "Rank.h"
#include "Say.h"
#include "StateNumber.h"

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace wall {

Notes::Notes(const Options& given, const Rank& rank) : options(given)
{
    if (!options.status.empty()) {
        status.emplace(options.status, rank.hosts);
    }
    if (!options.hash.empty()) {
        hash.emplace(options.hash);
    }
    if (!options.log.empty()) {
        const Plan& plan = rank.plan;
        log.emplace(options.log,
                    ShowHead{KELPIX_VERSION, rank.media, options.simulate ? options.scale : 0,
                             plan.layout.fit, plan.seed, plan.files});
    }
}

void Notes::addFrameBefore(const Orders& orders, double now)
{
    const FrameRecord& own = orders.records.front();
    if (own.frame == 1) {
        return;
    }
    if (hash) {
        char line[32];
        std::snprintf(line, sizeof line, "%" PRIu32 " %016" PRIx64 "\n", own.frame - 1,
                      numberOf(own.state));
        if (!hash->add(line)) {
            giveUp(options.hash);
            hash.reset();
        }
    }
    if (status) {
        addStatus(orders, now);
    }
}

void Notes::addStatus(const Orders& orders, double now)
{
    try {
        status->add(orders.records, now);
    } catch (const std::runtime_error& failure) {
        if (!isStatusMissing) {
            say(failure.what());
        }
        isStatusMissing = true;
    }
}

void Notes::addFrame(const FrameRecord& own, const Orders& orders)
{
    if (!log) {
        return;
    }
    const ShowFrame frame = {
        own.frame,           orders.lead.step,
        numberOf(own.state), orders.anew ? std::optional(orders.lead.seed) : std::nullopt,
        orders.inputs,       posesOf(orders.lead)};
    if (!log->add(frame)) {
        giveUp(options.log);
        log.reset();
    }
}

void Notes::giveUp(const std::filesystem::path& path)
{
    say("cannot write " + path.string() + ": " + std::strerror(errno) +
        "; the show goes on without it");
    complete = false;
}

} // namespace wall
