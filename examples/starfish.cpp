// starfish: the smallest program on the framework. One node, which draws itself and turns.

#include "PlainNode.h"
#include "SceneWindow.h"

#include <cmath>

class Starfish final : public PlainNode {
    void draw() override // once a frame, in the node's own frame
    {
        glColor3f(0.95f, 0.5f, 0.25f);
        glBegin(GL_TRIANGLE_FAN);
        glVertex2f(0, 0);
        for (int corner = 0; corner <= 10; ++corner) { // five arms
            const float radius = corner % 2 == 0 ? 0.4f : 0.15f;
            const float angle = 0.628319f * static_cast<float>(corner); // radians
            glVertex2f(radius * std::sin(angle), radius * std::cos(angle));
        }
        glEnd();
    }

    void doupdate() override { rotate(0, 0, 1, 0.5f); } // 40 times a second, half a degree
};

int main()
{
    SceneWindow window(740, 740);
    Starfish starfish;
    window.pivot.attachChild(&starfish); // the mouse turns, moves and zooms what hangs there
    return window.run() ? 0 : 1;         // 40 updates and frames a second
}
