#include "Player.h"

#include "Stage.h"

#include <FL/Fl.H>

namespace record {

void Player::playStep()
{
    for (; next < inputs.size() && inputs[next].step <= step; ++next) {
        give(inputs[next]);
    }
    scene.update();
    scene.draw();
    ++step;
}

void Player::give(const Input& input)
{
    Fl::e_number = input.event;
    Fl::e_x = Fl::e_x_root = input.x;
    Fl::e_y = Fl::e_y_root = input.y;
    Fl::e_dx = 0;
    Fl::e_dy = input.wheel;
    Fl::e_keysym = Fl::e_original_keysym = input.key;
    scene.window.handle(input.event);
}

} // namespace record
