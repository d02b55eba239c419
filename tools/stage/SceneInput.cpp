#include "SceneInput.h"

#include "Window.h"

#include <FL/Fl.H>

void give(Window& window, const SceneInput& input)
{
    Fl::e_number = input.event;
    Fl::e_x = Fl::e_x_root = input.x;
    Fl::e_y = Fl::e_y_root = input.y;
    Fl::e_dx = 0;
    Fl::e_dy = input.wheel;
    Fl::e_keysym = Fl::e_original_keysym = input.key;
    window.handle(input.event);
}
