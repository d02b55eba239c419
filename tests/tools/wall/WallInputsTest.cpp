#include "Inputs.h"

#include <FL/Enumerations.H>
#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using wall::FrameRecord;
using wall::InputEvent;
using wall::InputGate;
using wall::InputQueue;

constexpr int LEFT = FL_Button + FL_LEFT_MOUSE;

InputEvent at(int kind, int x, int key = 0)
{
    return {kind, x, 10, key, 0};
}

constexpr InputEvent WHEEL = {FL_MOUSEWHEEL, 1, 2, FL_Button + 4, -1};

std::vector<InputEvent> sent(InputQueue& queue)
{
    FrameRecord record;
    queue.fill(record);
    return {record.event.begin(), record.event.begin() + record.events};
}

/// The records of ranks with these events.
std::vector<FrameRecord> records(const std::vector<std::vector<InputEvent>>& events)
{
    std::vector<FrameRecord> all(events.size());
    for (std::size_t rank = 0; rank < events.size(); ++rank) {
        std::copy(events[rank].begin(), events[rank].end(), all[rank].event.begin());
        all[rank].events = static_cast<std::uint32_t>(events[rank].size());
    }
    return all;
}

} // namespace

TEST(WallInputQueueTest, OnlyTheLastOfSeveralMovementsIsSent)
{
    InputQueue queue;
    for (const InputEvent& event :
         {at(FL_MOVE, 1), at(FL_MOVE, 2), at(FL_PUSH, 2, LEFT), at(FL_DRAG, 3, 'v'),
          at(FL_DRAG, 4, 'v'), at(FL_DRAG, 5, 'z')}) {
        queue.add(event);
    }
    EXPECT_THAT(sent(queue), ElementsAre(at(FL_MOVE, 2), at(FL_PUSH, 2, LEFT), at(FL_DRAG, 4, 'v'),
                                         at(FL_DRAG, 5, 'z')));
    EXPECT_THAT(sent(queue), IsEmpty());
}

TEST(WallInputQueueTest, WhatDoesNotFitIntoAFrameComesWithTheNextOne)
{
    InputQueue queue;
    for (std::size_t i = 0; i < FrameRecord::EVENTS + 3; ++i) {
        queue.add(WHEEL);
    }
    EXPECT_EQ(sent(queue).size(), FrameRecord::EVENTS);
    EXPECT_EQ(sent(queue).size(), 3u);
}

TEST(WallInputQueueTest, AFloodIsCutAndTheReleaseOfAButtonIsKept)
{
    InputQueue queue;
    for (std::size_t i = 0; i < 2 * InputQueue::MOST; ++i) {
        queue.add(WHEEL);
    }
    queue.add(at(FL_RELEASE, 1, LEFT));
    std::vector<InputEvent> all;
    for (std::vector<InputEvent> some = sent(queue); !some.empty(); some = sent(queue)) {
        all.insert(all.end(), some.begin(), some.end());
    }
    EXPECT_EQ(all.size(), InputQueue::MOST + 1);
    EXPECT_EQ(all.back(), at(FL_RELEASE, 1, LEFT));
}

TEST(WallInputGateTest, WheelAndKeysOfAllTilesCountInTheOrderOfTheRanks)
{
    InputGate gate;
    EXPECT_THAT(gate.join(records({{}, {WHEEL, at(FL_KEYDOWN, 0, ' ')}, {WHEEL}})),
                ElementsAre(WHEEL, at(FL_KEYDOWN, 0, ' '), WHEEL));
}

TEST(WallInputGateTest, TheFirstDragHoldsUntilItIsReleased)
{
    InputGate gate;
    // Both press in one frame.
    EXPECT_THAT(gate.join(records({{}, {at(FL_PUSH, 100, LEFT)}, {at(FL_PUSH, 200, LEFT)}})),
                ElementsAre(at(FL_MOVE, 100, LEFT), at(FL_PUSH, 100, LEFT)));
    EXPECT_THAT(gate.join(records({{at(FL_MOVE, 5)}, {}, {at(FL_DRAG, 210, 'v'), WHEEL}})),
                ElementsAre(WHEEL));
    EXPECT_THAT(gate.join(records({{}, {at(FL_DRAG, 110, 'v')}, {at(FL_RELEASE, 210, LEFT)}})),
                ElementsAre(at(FL_DRAG, 110, 'v')));
    EXPECT_THAT(
        gate.join(records({{}, {at(FL_RELEASE, 110, LEFT)}, {at(FL_PUSH, 300, LEFT)}})),
        ElementsAre(at(FL_RELEASE, 110, LEFT), at(FL_MOVE, 300, LEFT), at(FL_PUSH, 300, LEFT)));
}

TEST(WallInputGateTest, ADragHoldsUntilAllItsButtonsAreReleased)
{
    constexpr int RIGHT = FL_Button + FL_RIGHT_MOUSE;
    InputGate gate;
    EXPECT_THAT(gate.join(records({{at(FL_PUSH, 1, LEFT), at(FL_PUSH, 2, RIGHT)}, {}})).size(), 3u);
    EXPECT_THAT(gate.join(records({{at(FL_RELEASE, 3, LEFT)}, {at(FL_PUSH, 200, LEFT)}})),
                ElementsAre(at(FL_RELEASE, 3, LEFT)));
    EXPECT_THAT(gate.join(records({{at(FL_MOVE, 4)}, {at(FL_DRAG, 210, LEFT)}})),
                ElementsAre(at(FL_MOVE, 4)));
    EXPECT_THAT(gate.join(records({{at(FL_RELEASE, 5, RIGHT)}, {at(FL_MOVE, 220)}})),
                ElementsAre(at(FL_RELEASE, 5, RIGHT), at(FL_MOVE, 220)));
}

TEST(WallInputGateTest, ADragBeginsWhereTheButtonIsPressed)
{
    InputGate gate;
    // Another tile's pointer moved last.
    EXPECT_THAT(gate.join(records({{at(FL_MOVE, 50)}, {at(FL_MOVE, 900)}})),
                ElementsAre(at(FL_MOVE, 50), at(FL_MOVE, 900)));
    EXPECT_THAT(gate.join(records({{at(FL_PUSH, 50, LEFT)}, {}})),
                ElementsAre(at(FL_MOVE, 50, LEFT), at(FL_PUSH, 50, LEFT)));
}

TEST(WallInputGateTest, ADamagedCountReadsNoFurtherThanTheRecord)
{
    InputGate gate;
    std::vector<FrameRecord> damaged = records({{}});
    damaged[0].events = 4000000000U;
    EXPECT_LE(gate.join(damaged).size(), FrameRecord::EVENTS);
}
