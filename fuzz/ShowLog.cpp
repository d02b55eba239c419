/// The input is the log of a show on a wall. What is read is written down, and read again.

#include "ShowLog.h"

#include "Harness.h"

#include <cmath>

namespace {

using wall::ShowFrame;

/// All frames of a log, up to where it breaks off. Throws wall::ShowError.
std::vector<ShowFrame> framesOf(wall::ShowReader& reader)
{
    std::vector<ShowFrame> frames;
    while (auto frame = reader.next()) {
        frames.push_back(*frame);
    }
    return frames;
}

void check(const std::vector<ShowFrame>& frames)
{
    constexpr int FARTHEST = 1 << 22;
    std::uint32_t number = 0;
    for (const ShowFrame& frame : frames) {
        fuzz::expect(frame.frame == ++number, "frames are counted from 1");
        for (const wall::InputEvent& event : frame.inputs) {
            fuzz::expect(std::abs(event.x) <= FARTHEST && std::abs(event.y) <= FARTHEST,
                         "a pointer is near the wall");
        }
        for (const auto& place : frame.poses.value_or(Poses())) {
            fuzz::expect(!place || std::hypot(place->x, place->y) <= 1500,
                         "a figure is near the water");
        }
    }
}

bool isSame(const ShowFrame& one, const ShowFrame& other)
{
    return one.frame == other.frame && one.step == other.step && one.state == other.state &&
           one.anew == other.anew && one.inputs == other.inputs && one.poses == other.poses;
}

void writeAndReadAgain(const wall::ShowHead& head, const std::vector<ShowFrame>& frames)
{
    const std::string path = fuzz::folder() + "again.log";
    wall::ShowWriter writer(path, head);
    for (const ShowFrame& frame : frames) {
        fuzz::expect(writer.add(frame), "the file takes the frame");
    }
    wall::ShowReader reader(path);
    fuzz::expect(std::ranges::equal(framesOf(reader), frames, isSame), "the frames are the same");
    const wall::ShowHead& again = reader.head();
    fuzz::expect(again.version == head.version && again.media == head.media &&
                     again.simulated == head.simulated && again.fit == head.fit &&
                     again.seed == head.seed && again.files.description == head.files.description &&
                     again.files.hasMore == head.files.hasMore &&
                     again.files.more == head.files.more,
                 "the head is the same");
}

} // namespace

void fuzz::test(std::string_view input)
{
    const std::string path = place("show.log", input);
    wall::ShowHead head;
    std::vector<ShowFrame> frames;
    try {
        call([&] {
            wall::ShowReader reader(path);
            head = reader.head();
            const WallLayout& wall = reader.layout();
            expect(!wall.tiles.empty() && wall.width >= 1 && wall.height >= 1, "there is a wall");
            frames = framesOf(reader);
        });
    } catch (const wall::ShowError& error) {
        const std::string_view text = error.what();
        expect(memory::isScarce() || (text.find(path) != std::string_view::npos &&
                                      text.find_first_of("\n\x1b") == std::string_view::npos),
               "a problem is a line that names the file");
        return;
    }
    check(frames);
    writeAndReadAgain(head, frames);
}
