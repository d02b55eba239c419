#pragma once

#include "Conductor.h"

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

/// How a simulated program behaves.
struct Plan {
    show::Seconds opening = 2; ///< from its start to its first frame
    bool endsByKey = true;     ///< else it ignores the key
    bool endsByTerm = true;    ///< else it ignores SIGTERM
    bool isSilent = false; ///< its window is there when it would have drawn, and it tells nothing
    show::Seconds ends = 1e9; ///< after its start, by itself
    show::End end = {true, "with status 1"};
    show::Seconds hangs = 1e9; ///< after its start
};

/// Programs and windows that are only numbers, on a clock that a test turns.
class SimulatedCrew : public show::Crew {
public:
    static constexpr show::Seconds FRAME = 0.05;

    struct Program {
        Plan plan;
        show::Seconds started = 0;
        bool isAway = false; ///< its window, which then draws nothing
        std::string told;    ///< "key", "term" or "kill"
    };

    explicit SimulatedCrew(show::Rules rules) : conductor(*this, rules) {}

    show::Conductor conductor;
    show::Seconds now = 0;
    std::map<show::Id, Program> programs; ///< those that run
    std::map<show::Id, Plan> plans;       ///< of the showings to come; the others have Plan()
    std::vector<show::Id> stack; ///< the windows that were raised and are there, the top last
    std::vector<show::Seconds> starts;
    std::vector<show::Seconds> raises;
    std::vector<std::string> said;
    std::vector<std::string> told; ///< "term 3"
    std::vector<show::Id> settled;
    std::vector<show::Id> dressed;
    int checks = 0;
    int refusals = 0;            ///< the next starts that fail
    bool hasQ = true;            ///< the keyboard
    show::Seconds emptyFor = 0;  ///< how long no window was on top since the first one
    show::Seconds frozenFor = 0; ///< how long the top one's picture did not change
    std::size_t most = 0;        ///< programs at once

    /// Lets time go by.
    void play(show::Seconds length)
    {
        for (const show::Seconds end = now + length; now < end; now += FRAME) {
            step();
        }
    }

    /// Takes a window away, as a visitor does who minimizes it, or gives it back.
    void setAway(show::Id id, bool isAway)
    {
        programs.at(id).isAway = isAway;
        conductor.visible(id, !isAway, now);
    }

    show::Id top() const { return stack.empty() ? 0 : stack.back(); }

    std::optional<show::Id> open(std::optional<show::Id> front) override
    {
        EXPECT_EQ(front, programs.count(top()) != 0 ? std::optional(top()) : std::nullopt);
        if (refusals > 0) {
            --refusals;
            return {};
        }
        const auto id = static_cast<show::Id>(starts.size() + 1);
        starts.push_back(now);
        programs[id] = {plans.count(id) != 0 ? plans[id] : Plan(), now, false, ""};
        most = std::max(most, programs.size());
        return id;
    }
    void dress(show::Id id) override { dressed.push_back(id); }
    void raise(show::Id id) override
    {
        stack.push_back(id);
        raises.push_back(now);
    }
    void settle(show::Id id) override { settled.push_back(id); }
    bool pressQ(show::Id id) override
    {
        if (hasQ) {
            tell(id, "key");
        }
        return hasQ;
    }
    void terminate(show::Id id) override { tell(id, "term"); }
    void kill(show::Id id) override { tell(id, "kill"); }
    void checkMedia() override { ++checks; }
    void say(const std::string& line) override { said.push_back(line); }

private:
    void tell(show::Id id, const std::string& what)
    {
        programs.at(id).told = what;
        told.push_back(what + " " + std::to_string(id));
    }

    void step()
    {
        for (const auto& [id, program] : std::map(programs)) {
            const show::Seconds age = now - program.started;
            if (program.told == "kill" || (program.told == "term" && program.plan.endsByTerm)) {
                end(id, {true, "by signal 9"});
            } else if (program.told == "key" && program.plan.endsByKey) {
                end(id, {false, "with status 0"});
            } else if (age >= program.plan.ends) {
                end(id, program.plan.end);
            } else if (age >= program.plan.opening && age < program.plan.hangs && !program.isAway) {
                if (program.plan.isSilent) {
                    conductor.silent(id, now);
                } else {
                    conductor.frame(id, now);
                }
            }
        }
        conductor.pass(now);
        // Whoever waits until it is due does not wait in vain, and does not turn in circles.
        EXPECT_GT(conductor.due(), now);
        if (!raises.empty()) {
            emptyFor += stack.empty() ? FRAME : 0;
            frozenFor += !stack.empty() && hangs(top()) ? FRAME : 0;
        }
    }

    bool hangs(show::Id id) const
    {
        const Program& program = programs.at(id);
        return now - program.started >= program.plan.hangs;
    }

    void end(show::Id id, const show::End& end)
    {
        programs.erase(id);
        std::erase(stack, id);
        conductor.ended(id, end, now);
    }
};
