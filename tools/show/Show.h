#pragma once

#include "Conductor.h"
#include "Health.h"
#include "LatestLine.h"
#include "MediaWatch.h"
#include "Options.h"
#include "Processes.h"
#include "Screen.h"
#include "Service.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace show {

/// What the showings are made of.
struct Programme {
    std::vector<std::string> command; ///< starts one
    std::vector<std::string> check; ///< looks at the media, and ends with status 0 if they are good
    std::filesystem::path media;    ///< is watched; empty = none
};

/// A conductor with real processes, windows and media, until a signal ends it.
class Show : private Crew {
public:
    /// Throws std::runtime_error, with a line for the user, when the X server cannot be reached.
    Show(const Options& options, Programme programme);
    ~Show() override;

    /// Runs until SIGTERM, SIGINT or SIGHUP. Throws std::runtime_error, with a line for the user,
    /// when the X server goes away.
    void run();

private:
    static constexpr Seconds NEVER = -1;

    Options options;
    Programme programme;
    Service service;
    int signals; ///< owns: a descriptor that tells signals
    Processes processes;
    Screen screen;
    std::optional<MediaWatch> watch;
    Conductor conductor;
    Id latest = 0;               ///< the youngest showing
    Seconds restAt = NEVER;      ///< when touched media count as being at rest
    Seconds checkUntil = NEVER;  ///< when a check that goes on is given up
    int checkOutput = -1;        ///< owns: what the check prints
    bool isCheckDropped = false; ///< the one that goes on: nobody wants its answer any more
    Seconds statusAt = 0;        ///< when the next status line is due
    Seconds aliveAt = 0;         ///< when the next sign of life is due
    std::optional<status::LatestLine> statusFile;
    Health health;

    std::optional<Id> open(std::optional<Id> front) override;
    void dress(Id showing) override { screen.dress(showing); }
    void raise(Id showing) override { screen.raise(showing); }
    void settle(Id showing) override { screen.settle(showing); }
    bool pressQ(Id showing) override { return screen.pressQ(showing); }
    void terminate(Id showing) override;
    void kill(Id showing) override;
    void checkMedia() override;
    void say(const std::string& line) override;

    void readScreen();
    void takeSignals(Seconds now);
    void onEnd(Id showing, const End& end, Seconds now);
    void onCheckEnd(bool isGood);
    void dropCheck();
    void sayWhatIsWatched();
    void watchMedia(Seconds now);
    void reportStatus(Seconds now);
    std::optional<Seconds> period() const;
    int timeout(Seconds now) const;
};

} // namespace show
