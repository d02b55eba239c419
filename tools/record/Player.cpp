#include "Player.h"

#include "Environment.h"
#include "PivotNode.h"
#include "RootNode.h"
#include "SceneInput.h"
#include "Stage.h"
#include "View.h"

namespace record {

void Player::playStep()
{
    for (; next < acts.size() && stepOf(acts[next]) <= step; ++next) {
        std::visit([this](const auto& act) { perform(act); }, acts[next]);
    }
    scene.update();
    scene.draw();
    ++step;
}

StateHash Player::hash() const
{
    return scene.hash();
}

void Player::perform(const Input& input)
{
    give(scene.window, {input.event, input.x, input.y, input.key, input.wheel});
}

void Player::perform(const Zoom& zoom)
{
    if (View::zoom(scene.scene.root->transformmat, zoom.factor)) {
        scene.window.pscale = zoom.factor; // by which the window slows down turns
    }
}

void Player::perform(const Pan& pan)
{
    View::center(scene.scene.root->transformmat, scene.scene.pivot->transformmat,
                 scene.water->transformmat, pan.x, pan.y);
}

} // namespace record
