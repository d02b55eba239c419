#include "LiveScene.h"

#include "Environment.h"
#include "MoCap.h"
#include "PivotNode.h"
#include "RootNode.h"

#include <FL/Fl.H>
#include <cmath>

namespace live {

void LiveScene::begin(int width, int height, unsigned seed)
{
    recording.reset();
    play.begin(width, height, seed);
    recording.emplace(*play.stage().recording);
    steering = {};
    motion = {};
    lastStep = 0;
    lastPoses = {};
}

void LiveScene::resize(int width, int height)
{
    Window& window = play.stage().window;
    window.resize(0, 0, width, height);
    if (window.valid()) {
        window.getRender()->getCamera()->reshape(0, 0, width, height);
    }
}

void LiveScene::obey(const osc::Command& command)
{
    using Kind = osc::Command::Kind;
    const auto x = static_cast<double>(command.x);
    const auto y = static_cast<double>(command.y);
    switch (command.kind) {
    case Kind::FIGURE:
        steering.lead(command.figure, x, y);
        break;
    case Kind::RELEASE:
        steering.release(command.figure);
        break;
    case Kind::ZOOM:
        motion.zoom(x);
        break;
    case Kind::MOVE:
        motion.move(x, y);
        break;
    case Kind::TURN:
        motion.turn(x, y);
        break;
    case Kind::CLICK: {
        const Window& window = play.stage().window;
        give({FL_PUSH, static_cast<int>(std::lround(x * (window.w() - 1))),
              static_cast<int>(std::lround((1 - y) * (window.h() - 1))), FL_Button + FL_RIGHT_MOUSE,
              0});
        break;
    }
    case Kind::SEED:
    case Kind::RESTART:
        break;
    }
}

void LiveScene::update(int step)
{
    Stage& stage = play.stage();
    motion.advance(stage.scene, stage.window.pscale, aspect());
    lastStep = recording->nearestStep(step);
    lastPoses = steering.next(*recording, lastStep, view());
    recording->write(lastStep, lastPoses);
    play.update(lastStep);
}

int LiveScene::numSteps() const
{
    return play.stage().recording->numSteps;
}

std::optional<Place> LiveScene::seenAt(int figure) const
{
    const Node& sensor = *play.stage().water->sensorList[static_cast<std::size_t>(figure)];
    return view().pictureOf({static_cast<double>(sensor.transformmat[12]),
                             static_cast<double>(sensor.transformmat[13])});
}

WaterView LiveScene::view() const
{
    const Stage& stage = play.stage();
    return {stage.scene.root->transformmat, stage.scene.pivot->transformmat,
            stage.water->transformmat, aspect()};
}

double LiveScene::aspect() const
{
    const Window& window = play.stage().window;
    return static_cast<double>(window.w()) / window.h();
}

} // namespace live
