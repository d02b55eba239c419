#include "Conductor.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace show {

namespace {

constexpr Seconds NEVER = std::numeric_limits<Seconds>::infinity();

std::string seconds(Seconds time)
{
    return std::to_string(std::lround(time)) + " s";
}

} // namespace

Conductor::Showing* Conductor::find(Id id)
{
    const auto found = std::find_if(showings.begin(), showings.end(),
                                    [&](const Showing& showing) { return showing.id == id; });
    return found == showings.end() ? nullptr : &*found;
}

const Conductor::Showing* Conductor::playing() const
{
    const auto found = std::find_if(showings.begin(), showings.end(), [](const Showing& showing) {
        return showing.state == State::playing;
    });
    return found == showings.end() ? nullptr : &*found;
}

const Conductor::Showing* Conductor::coming() const
{
    const auto found = std::find_if(showings.begin(), showings.end(), [](const Showing& showing) {
        return showing.state != State::playing && showing.state != State::leaving;
    });
    return found == showings.end() ? nullptr : &*found;
}

bool Conductor::isAnyLeaving() const
{
    return std::any_of(showings.begin(), showings.end(),
                       [](const Showing& showing) { return showing.state == State::leaving; });
}

std::optional<Id> Conductor::front() const
{
    const Showing* const next = coming();
    if (next != nullptr && next->state == State::raised) {
        return next->id;
    }
    const Showing* const now = playing();
    return now != nullptr ? std::optional(now->id) : std::nullopt;
}

bool Conductor::isFrontStill() const
{
    const Showing* const next = coming();
    const Showing* const now = playing();
    return (next == nullptr || next->state != State::raised) && now != nullptr &&
           (now->isHanging || now->isAway);
}

void Conductor::frame(Id id, Seconds now)
{
    Showing* const showing = find(id);
    if (showing == nullptr) {
        return;
    }
    showing->nextStage.reset();
    showing->latest = now;
    ++showing->frames;
    if (showing->state == State::opening) {
        dress(*showing, now);
    } else if (showing->state == State::dressed && showing->frames >= FRAMES_TO_OPEN) {
        raise(*showing, now);
    } else if (showing->state == State::raised && showing->frames >= FRAMES_IN_FRONT) {
        play(*showing, now);
    }
}

void Conductor::silent(Id id, Seconds now)
{
    Showing* const showing = find(id);
    if (showing != nullptr && showing->state == State::opening && !showing->nextStage) {
        showing->nextStage = now + SILENT_STAGE;
    }
}

void Conductor::passStage(Showing& showing, Seconds now)
{
    showing.nextStage = now + SILENT_STAGE;
    if (showing.state == State::opening) {
        dress(showing, now);
    } else if (showing.state == State::dressed) {
        raise(showing, now);
    } else {
        showing.nextStage = NEVER;
        play(showing, now);
    }
}

void Conductor::visible(Id id, bool isVisible, Seconds now)
{
    Showing* const showing = find(id);
    if (showing != nullptr && showing->isAway == isVisible) {
        showing->isAway = !isVisible;
        showing->latest = now;
    }
}

void Conductor::dress(Showing& showing, Seconds now)
{
    showing.state = State::dressed;
    showing.first = now;
    showing.frames = 0;
    crew.dress(showing.id);
}

void Conductor::raise(Showing& showing, Seconds now)
{
    showing.state = State::raised;
    showing.frames = 0;
    starts.push_back(now - showing.opened);
    if (starts.size() > STARTS) {
        starts.pop_front();
    }
    ++shown;
    crew.raise(showing.id);
}

void Conductor::play(Showing& showing, Seconds now)
{
    crew.say("showing " + std::to_string(shown) + " plays");
    for (Showing& other : showings) {
        if (other.state == State::playing) {
            leave(other, other.isHanging ? Step::term : Step::key, now);
        }
    }
    showing.state = State::playing;
    if (!isAnyLeaving()) {
        crew.settle(showing.id);
    }
}

void Conductor::ended(Id id, const End& end, Seconds now)
{
    const Showing* const found = find(id);
    if (found == nullptr) {
        return;
    }
    const Showing showing = *found;
    showings.erase(showings.begin() + (found - showings.data()));
    if (showing.state == State::leaving) {
        const Showing* const front = playing();
        if (front != nullptr &&
            std::none_of(showings.begin(), showings.end(),
                         [](const Showing& s) { return s.state == State::leaving; })) {
            crew.settle(front->id);
        }
    } else if (showing.state != State::playing) {
        noteFault("the program ended " + end.how + " before it was in front");
        pause(now);
    } else if (end.isFault) {
        noteFault("the program ended " + end.how + " " + seconds(now - showing.first) +
                  " after its first frame");
        pauseAfter(showing, now);
    } else {
        crew.say("the showing was ended by its key, or its window was closed");
    }
}

void Conductor::mediaTouched(Seconds now)
{
    media = Media::touched;
    for (Showing& showing : showings) {
        // It may be reading files that are only half there.
        if (showing.state == State::opening && playing() != nullptr) {
            leave(showing, Step::term, now);
        }
    }
}

void Conductor::mediaAtRest()
{
    if (!stopping) {
        media = Media::checked;
        crew.checkMedia();
    }
}

void Conductor::mediaChecked(bool good)
{
    if (media != Media::checked) {
        return; // it has been touched meanwhile
    }
    media = good ? Media::good : Media::refused;
    for (Showing& showing : showings) {
        showing.isStale = showing.isStale || good;
    }
}

Seconds Conductor::lead() const
{
    const auto slowest = std::max_element(starts.begin(), starts.end());
    return slowest == starts.end() ? 0 : *slowest + std::min(MARGIN * *slowest, LARGEST_MARGIN);
}

Seconds Conductor::nextOpening() const
{
    if (stopping || coming() != nullptr) {
        return NEVER;
    }
    const Showing* const now = playing();
    if (now == nullptr || now->isHanging) {
        return mayOpen;
    }
    if (isAnyLeaving()) {
        return NEVER; // one after the other
    }
    if (now->isStale && media == Media::good) {
        return mayOpen;
    }
    if (media != Media::good || !now->period) {
        return NEVER;
    }
    return std::max(mayOpen, now->first + *now->period - lead());
}

Seconds Conductor::losesPatience(const Showing& showing) const
{
    if (showing.state == State::leaving || showing.isHanging || showing.nextStage ||
        (showing.state == State::playing && showing.isAway)) {
        return NEVER;
    }
    return showing.state == State::opening ? showing.opened + PATIENCE_TO_OPEN * rules.patience
                                           : showing.latest + rules.patience;
}

Seconds Conductor::due() const
{
    Seconds time = nextOpening();
    for (const Showing& showing : showings) {
        time = std::min(time, losesPatience(showing));
        if (showing.state == State::leaving) {
            time = std::min(time, showing.nextStep);
        } else if (showing.nextStage) {
            time = std::min(time, *showing.nextStage);
        }
    }
    return time;
}

void Conductor::pass(Seconds now)
{
    for (Showing& showing : showings) {
        if (now >= losesPatience(showing)) {
            giveUp(showing, now);
        }
        if (showing.state == State::leaving && now >= showing.nextStep) {
            leave(showing, showing.step == Step::key ? Step::term : Step::kill, now);
        } else if (showing.state != State::leaving && showing.nextStage &&
                   now >= *showing.nextStage) {
            passStage(showing, now);
        }
    }
    if (now >= nextOpening()) {
        const Showing* const front = playing();
        const auto id = crew.open(front != nullptr ? std::optional(front->id) : std::nullopt);
        if (id) {
            showings.push_back({*id, now, rules.period});
        } else {
            noteFault("the program could not be started");
            pause(now);
        }
    }
}

void Conductor::giveUp(Showing& showing, Seconds now)
{
    if (showing.state == State::opening) {
        noteFault("no first frame within " + seconds(now - showing.opened));
    } else {
        noteFault("no frame for " + seconds(now - showing.latest));
    }
    if (showing.state == State::playing) {
        // Its last frame stays on the screen until the next showing is in front.
        showing.isHanging = true;
        pauseAfter(showing, now);
    } else {
        leave(showing, Step::term, now);
        pause(now);
    }
}

void Conductor::leave(Showing& showing, Step step, Seconds now)
{
    if (showing.state == State::playing && now - showing.first >= QUICK) {
        quickEnds = 0;
    }
    showing.state = State::leaving;
    showing.step = step;
    showing.nextStep = now + GRACE;
    switch (step) {
    case Step::key:
        if (!crew.pressQ(showing.id)) {
            leave(showing, Step::term, now);
        }
        break;
    case Step::term:
        crew.terminate(showing.id);
        break;
    case Step::kill:
        crew.kill(showing.id);
        break;
    }
}

void Conductor::stop(Seconds now)
{
    if (stopping) {
        return; // asked again, they get no more time
    }
    stopping = true;
    for (Showing& showing : showings) {
        leave(showing, Step::term, now);
    }
}

void Conductor::noteFault(const std::string& text)
{
    ++faultCount;
    fault = text;
    crew.say(text);
}

void Conductor::pauseAfter(const Showing& showing, Seconds now)
{
    if (now - showing.first < QUICK) {
        pause(now);
    } else {
        quickEnds = 0;
    }
}

void Conductor::pause(Seconds now)
{
    // 1, 2, 4 seconds and so on.
    const Seconds length = std::min(LONGEST_PAUSE, std::exp2(std::min(quickEnds, 16)));
    ++quickEnds;
    mayOpen = now + length;
    if (quickEnds > 1) {
        crew.say(std::to_string(quickEnds) + " times in a row: the next start in " +
                 seconds(length));
    }
}

} // namespace show
