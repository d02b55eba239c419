// hello-node: a small scene. Kelp that sways and bubbles that rise: node classes of our own in
// the framework's window.

#include "Frustum.h"
#include "Matrix.h"
#include "PlainNode.h"
#include "SceneWindow.h"
#include "UserEvent.h"

#include <cmath>
#include <cstdio>
#include <deque>

namespace {

constexpr int SIZE = 740;            // pixels, of the window
constexpr float IN_VIEW = 1.1547f;   // units that the camera sees at a distance of 1
constexpr float HALF_TURN = 3.1416f; // radians

/// A pair of kelp leaves. A plant is a chain of them, each the child of the one below, so that a
/// pair that sways moves all pairs above it.
//! [node]
class Kelp final : public PlainNode {
public:
    Kelp(float atX, float atY, float startPhase) : x(atX), y(atY), phase(startPhase) {}

    /// Called once a frame, with this node's transform in GL's modelview matrix.
    void draw() override
    {
        for (const float side : {-1.0f, 1.0f}) {
            glBegin(GL_TRIANGLE_STRIP);
            for (int i = 0; i <= 12; ++i) {
                const float s = static_cast<float>(i) / 12; // along the leaf
                const float width = 0.025f * std::sin(HALF_TURN * s);
                glColor3f(0.25f + 0.5f * s, 0.35f + 0.25f * s, 0.1f);
                glVertex2f(side * (0.12f * s + width), 0.16f * s * (1 - s / 3) - width);
                glVertex2f(side * (0.12f * s - width), 0.16f * s * (1 - s / 3) + width);
            }
            glEnd();
        }
    }

    /// Called once an update, 40 times a second.
    void doupdate() override
    {
        phase += 0.04f;
        //! [matrix]
        Matrix::load_identity(glTransform());
        translate(x, y, 0);
        rotate(0, 0, 1, 3 * std::sin(phase));
        scale(0.96f, 0.96f, 1); // what grows on it is smaller
        //! [matrix]
    }

private:
    float x, y;  ///< where it grows, in the frame of its parent
    float phase; ///< radians
};
//! [node]

/// Rises, and dies when it has left the view.
class Bubble final : public PlainNode {
public:
    //! [cull]
    int cull() override
    {
        float planes[6][4]; // of the view, in this node's frame
        const float center[3] = {0, 0, 0};
        Frustum::get_frustum(planes);
        if (Frustum::test_point(planes, center) == -1) {
            return -1; // out of view: neither this node nor its children are drawn
        }
        if (list == 0) {
            initialize();
        }
        draw();
        return 1;
    }
    //! [cull]

    /// Compiles the display list. Called by the first cull: a constructor has no GL context.
    void initialize()
    {
        list = glGenLists(1);
        glNewList(list, GL_COMPILE);
        glBegin(GL_TRIANGLE_FAN);
        glColor4f(0.8f, 1, 1, 0.05f);
        glVertex2f(-0.3f, 0.3f);
        glColor4f(0.8f, 1, 1, 0.6f);
        for (int i = 0; i <= 32; ++i) {
            const float t = HALF_TURN * static_cast<float>(i) / 16;
            glVertex2f(std::cos(t), std::sin(t));
        }
        glEnd();
        glEndList();
    }

    /// Enables blending, and disables it again: no other node expects it.
    void draw() override
    {
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glCallList(list);
        glDisable(GL_BLEND);
    }

    void doupdate() override
    {
        translate(0, 0.2f, 0);
        if (transformmat[13] > IN_VIEW / 2) {
            die(); // the next draw traversal removes it from the tree and deletes it
        }
    }

    /// Called before a dead node is deleted. Its destructor does not run.
    void cleanup() override { glDeleteLists(list, 1); }

private:
    GLuint list = 0;
};

/// Makes a bubble where the mouse is clicked.
class Water final : public PlainNode {
public:
    /// Deletes the bubbles that are still alive: nobody else does.
    ~Water()
    {
        for (Node* bubble : children) {
            delete static_cast<Bubble*>(bubble);
        }
    }

    //! [event]
    void userEvent(UserEvent* event) override
    {
        // From pixels to the eye's frame, at the distance of this node; then to this node's frame,
        // by the inverse of its object-to-eye transform in the last frame.
        const float* click = event->getEventData();
        const float x = (click[0] / SIZE - 0.5f) * IN_VIEW;
        const float y = (0.5f - click[1] / SIZE) * IN_VIEW;
        float m[16];
        Matrix::do_inverse(m, glWorldMatrix());
        auto* bubble = new Bubble; // with new, because it can die
        bubble->translate(m[0] * x + m[12], m[5] * y + m[13], 0);
        bubble->scale(0.03f, 0.03f, 1);
        attachChild(bubble);
    }
    //! [event]
};

} // namespace

int main()
{
    std::puts(
        "hello-node: kelp that sways, and bubbles\n"
        "  right click  lets a bubble rise; so does space, at the mouse\n"
        "  wheel        zooms\n"
        "  drag         with v moves, with z, x or c turns the scene (button first, then key)\n"
        "  q            ends");

    //! [scene window]
    SceneWindow window(SIZE, SIZE);
    Water water;
    std::deque<Kelp> kelp; // does not move its elements: other nodes point to them
    for (int plant = 0; plant < 5; ++plant) {
        const auto k = static_cast<float>(plant);
        kelp.emplace_back(0.22f * (k - 2), -0.58f, k);
        window.pivot.attachChild(&kelp.back());
        for (int pair = 1; pair < 8 + plant * 3 % 5; ++pair) { // 2 + 12 levels; GL allows 15
            kelp.emplace_back(0.0f, 0.09f, k - 0.3f * static_cast<float>(pair));
            kelp[kelp.size() - 2].attachChild(&kelp.back());
        }
    }
    window.root.attachChild(&water); // the mouse does not turn it
    return window.run() ? 0 : 1;     // 40 updates and frames per second
    //! [scene window]
}
