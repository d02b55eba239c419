#include "Player.h"

#include "Environment.h"
#include "PivotNode.h"
#include "RootNode.h"
#include "Stage.h"
#include "View.h"

#include <FL/Fl.H>

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

void Player::perform(const Input& input)
{
    Fl::e_number = input.event;
    Fl::e_x = Fl::e_x_root = input.x;
    Fl::e_y = Fl::e_y_root = input.y;
    Fl::e_dx = 0;
    Fl::e_dy = input.wheel;
    Fl::e_keysym = Fl::e_original_keysym = input.key;
    scene.window.handle(input.event);
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
