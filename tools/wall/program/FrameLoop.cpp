#include <GL/glew.h>

#include "FrameLoop.h"

#include "ExitGuard.h"
#include "Launch.h"
#include "Leader.h"
#include "LedFigures.h"
#include "Notes.h"
#include "Protocol.h"
#include "Rank.h"
#include "Say.h"

#include <chrono>
#include <thread>

namespace wall {

namespace {

using Clock = std::chrono::steady_clock;

double secondsNow()
{
    return std::chrono::duration<double>(Clock::now().time_since_epoch()).count();
}

/// Says why this rank alone cannot go on. The launcher ends all ranks with the first one that ends:
/// the others leave the first one the time to say what may be the same for all.
void sayWhyItEnds(const Rank& rank)
{
    if (!rank.isFirst()) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
    }
    say(hostName() + ": " + rank.readersComplaint());
}

} // namespace

FrameLoop::FrameLoop(Rank& prepared, Protocol& talk, const Shots& pictures, const First* ofFirst)
    : rank(prepared), protocol(talk), shots(pictures), first(ofFirst)
{
}

void FrameLoop::play()
{
    for (;;) {
        const Orders orders = exchange();
        if (orders.quit && orders.mismatch) {
            throw WallError("the tiles disagree");
        }
        if (orders.quit) {
            return;
        }
        playFrame(orders);
    }
}

/// What all ranks do in the next frame.
Orders FrameLoop::exchange()
{
    if (first != nullptr) {
        first->leader.awaitFrame();
    }
    own.frame += 1;
    rank.window->takeInput(own);
    if (first != nullptr) {
        own.lead = first->leader.decide(own.frame);
    }
    Orders orders = protocol.exchange(own);
    if (first != nullptr) {
        if (orders.mismatch) {
            say("frame " + std::to_string(orders.mismatch->frame) + ": " +
                protocol.nameOf(orders.mismatch->rank) + " differs in " + orders.mismatch->part +
                (orders.quit ? "; the wall ends" : "; the wall begins anew"));
        }
        first->notes.addFrameBefore(orders, secondsNow());
    }
    return orders;
}

void FrameLoop::playFrame(const Orders& orders)
{
    using Milliseconds = std::chrono::duration<float, std::milli>;

    const Clock::time_point begin = Clock::now();
    if (rank.pattern) {
        rank.pattern->draw(own.frame);
    } else {
        playScene(orders);
    }
    shots.save(own.frame);
    glFinish();
    const Clock::time_point drawn = Clock::now();
    protocol.meet();
    const Clock::time_point left = Clock::now();
    rank.window->swap();
    own.drawing = Milliseconds(drawn - begin).count();
    own.waiting = Milliseconds(left - drawn).count();
    own.left = std::chrono::nanoseconds(left.time_since_epoch()).count();
    if (first != nullptr) {
        first->leader.shown(own.frame == 1 || orders.anew);
    }
}

void FrameLoop::playScene(const Orders& orders)
{
    const record::ExitGuard guard([this] { sayWhyItEnds(rank); });
    WallScene& scene = *rank.scene;
    if (orders.anew) {
        scene.begin(orders.lead.seed);
    }
    for (const InputEvent& event : orders.inputs) {
        scene.give(event);
    }
    scene.update(orders.lead.step, posesOf(orders.lead));
    scene.draw();
    own.state = scene.state();
    if (first != nullptr) {
        first->notes.addFrame(own, orders);
    }
}

} // namespace wall
